#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Rational.h"

#include <memory>

namespace Velmor::AV {

// Converts blocks of samples with libswresample to one sample format, rate and channel count
// (an encoder's). Configures itself from the first block, and again whenever the input's
// format, rate or layout changes. One thread at a time.
class Resampler {
public:
    // `format` an AVSampleFormat. Throws MediaError "Can not resample to <rate> Hz: <reason>"
    // for settings libswresample refuses (also at the first block).
    Resampler(int format, int sampleRate, int channels);
    Resampler(const Resampler&) = delete;
    Resampler& operator=(const Resampler&) = delete;
    ~Resampler();

    // The samples converted so far, with a timestamp in 1/sampleRate: the input's, rescaled,
    // less what the resampler still holds. May hold no samples.
    Frame convert(const Frame& input, Rational timeBase);
    // What the resampler still holds, at the end of the input; may hold no samples.
    Frame drain();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
