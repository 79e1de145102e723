#pragma once

#include "platform/av/Frame.h"

#include <memory>

namespace Mixing {

// Measures a mix's integrated loudness (EBU R128) with libavfilter's ebur128, the meter the
// field judges by. One thread at a time.
class LoudnessMeter {
public:
    // Throws what setting up the filters throws.
    LoudnessMeter(int sampleRate, int channels);
    ~LoudnessMeter();

    // The mix's next samples (planar float), from its start on.
    void add(const Velmor::AV::Frame& block);
    // Ends the mix; its integrated loudness in LUFS, -70 for a mix too quiet to measure.
    double finish();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Mixing
