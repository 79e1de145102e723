#pragma once

#include <cstdint>

namespace Mixing {

// The times of a project's output samples: sample i starts at i / rate seconds, and a time in
// milliseconds maps to the first sample that starts at or after it, as times map to frames.
// Exact: no rounding drifts over a long project.
class SampleTimes {
public:
    // Throws std::invalid_argument "A sample rate must be positive, not <rate>".
    explicit SampleTimes(int sampleRate);

    int rate() const { return sampleRate; }
    // The first sample that starts at or after the time; the samples of [a, b) are
    // sampleAt(a) .. sampleAt(b) - 1.
    std::int64_t sampleAt(std::int64_t milliseconds) const;

private:
    int sampleRate;
};

} // namespace Mixing
