#pragma once

#include "platform/render/Progress.h"

#include <chrono>
#include <cstdint>
#include <functional>

namespace Velmor::Render {

// Turns what a writer encoded (frames, the furthest end in ms) into Progress against the
// output's expected duration, timed by a clock that tests replace. Starts its clock when made;
// update() on one thread at a time (the writer's first stream's).
class ProgressMeter {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Report = std::function<void(const Progress& progress)>;

    ProgressMeter(
        std::int64_t expectedMs, Report report,
        Clock clock = [] { return std::chrono::steady_clock::now(); });

    // Reports the progress after `frames` frames whose furthest end is `doneMs`.
    void update(std::int64_t frames, std::int64_t doneMs);

    // The arithmetic: the share done, clamped to [0, 1] (0 when nothing is expected), and the
    // rate over `seconds` (0 before any time passed).
    static Progress at(std::int64_t frames, std::int64_t doneMs, std::int64_t expectedMs,
                       double seconds);

private:
    const std::int64_t expectedMs;
    const Report report;
    const Clock clock;
    const std::chrono::steady_clock::time_point started;
};

} // namespace Velmor::Render
