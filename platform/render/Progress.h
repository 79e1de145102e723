#pragma once

#include <cstdint>

namespace Velmor::Render {

// How far a render is.
struct Progress {
    // From 0 to 1: the share of the output's duration encoded so far.
    double progress = 0;
    std::int64_t frames = 0;
    // Frames encoded per second since the meter started.
    double fps = 0;
};

} // namespace Velmor::Render
