#include "platform/effects/Title.h"

#include <algorithm>

namespace Effects {

const std::vector<std::string>& positionNames() {
    static const std::vector<std::string> names{"top-left",    "top-center",    "top-right",
                                                "center-left", "center",        "center-right",
                                                "bottom-left", "bottom-center", "bottom-right"};
    return names;
}

const std::string& positionName(Position position) {
    return positionNames().at(static_cast<std::size_t>(position));
}

std::optional<Position> positionNamed(const std::string& name) {
    const auto& names = positionNames();
    const auto found = std::find(names.begin(), names.end(), name);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Position>(found - names.begin());
}

} // namespace Effects
