#include "platform/render/ClipSettings.h"

#include "platform/av/MediaError.h"

namespace Velmor::Render {
namespace {

std::string milliseconds(std::int64_t microseconds) {
    return std::to_string(microseconds / 1000);
}

} // namespace

void ClipSettings::Range::requireWithin(const std::string& input, std::int64_t lengthMs) const {
    if (from >= 0 && from < to && to <= lengthMs * 1000)
        return;
    throw AV::MediaError("Range " + milliseconds(from) + ":" + milliseconds(to) + " ms is outside "
                         + input + " (" + std::to_string(lengthMs) + " ms)");
}

} // namespace Velmor::Render
