#pragma once

#include "platform/av/Rational.h"

#include <cstdint>

namespace Project {

// The times of a project's output frames: frame i starts at i / rate seconds, and a time in
// milliseconds maps to the first frame that starts at or after it. Exact: no rounding drifts
// over a long project.
class FrameTimes {
public:
    // Throws std::invalid_argument for a rate that is not positive.
    explicit FrameTimes(Velmor::AV::Rational rate);

    Velmor::AV::Rational rate() const { return frameRate; }
    // The first frame that starts at or after the time; the frames of [a, b) are
    // frameAt(a) .. frameAt(b) - 1.
    std::int64_t frameAt(std::int64_t milliseconds) const;
    // When a frame starts, in milliseconds.
    double startOf(std::int64_t frame) const;
    // How far into [startMs, startMs + lengthMs) the frame starts: 0 at its start, 1 at its end.
    double progress(std::int64_t frame, std::int64_t startMs, std::int64_t lengthMs) const;

private:
    Velmor::AV::Rational frameRate;
};

} // namespace Project
