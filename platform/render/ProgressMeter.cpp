#include "platform/render/ProgressMeter.h"

#include <algorithm>

namespace Velmor::Render {

ProgressMeter::ProgressMeter(std::int64_t expectedMs, Report report, Clock clock)
    : expectedMs(expectedMs)
    , report(std::move(report))
    , clock(std::move(clock))
    , started(this->clock()) {}

void ProgressMeter::update(std::int64_t frames, std::int64_t doneMs) {
    const double seconds = std::chrono::duration<double>(clock() - started).count();
    report(at(frames, doneMs, expectedMs, seconds));
}

Progress ProgressMeter::at(std::int64_t frames, std::int64_t doneMs, std::int64_t expectedMs,
                           double seconds) {
    Progress value;
    value.frames = frames;
    value.progress =
        expectedMs > 0 ? std::clamp(static_cast<double>(doneMs) / expectedMs, 0.0, 1.0) : 0.0;
    value.fps = seconds > 0 ? frames / seconds : 0;
    return value;
}

} // namespace Velmor::Render
