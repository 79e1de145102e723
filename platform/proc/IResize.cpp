#include "platform/proc/IResize.h"

#include <array>
#include <stdexcept>

namespace Velmor::Proc {
namespace {

const std::array<std::string, 6>& modeNames() {
    static const std::array<std::string, 6> names = {"Fit",      "Fill",      "Stretch",
                                                     "FitWidth", "FitHeight", "Center"};
    return names;
}

} // namespace

IResize::~IResize() = default;

const std::string& IResize::CustomModes2String(SettingsResizer::CustomModes mode) {
    const int index = static_cast<int>(mode);
    if (index < 0 || index >= static_cast<int>(modeNames().size()))
        throw std::out_of_range("No resize mode with the number " + std::to_string(index));
    return modeNames()[static_cast<std::size_t>(index)];
}

SettingsResizer::CustomModes IResize::String2CustomModes(const std::string& name) {
    const auto& names = modeNames();
    for (std::size_t index = 0; index < names.size(); ++index) {
        if (names[index] == name)
            return static_cast<SettingsResizer::CustomModes>(index);
    }
    throw std::invalid_argument("No resize mode named \"" + name + "\"");
}

} // namespace Velmor::Proc
