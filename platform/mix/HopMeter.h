#pragma once

#include "platform/av/Frame.h"

#include <memory>
#include <vector>

namespace Mixing {

// What a mix reaches in each hop, linear: its true peak (1 is full scale) and its power (the
// mean square of its samples over the channels).
struct HopLevels {
    std::vector<float> peaks;
    std::vector<float> powers;
};

// Measures each hop of a mix on its samples four times oversampled, as EBU R128 measures true
// peaks, by libavfilter's aresample. What each hop reaches is taken by hand: no filter gives it
// per stretch of time (ebur128 keeps only the largest peak so far). One thread at a time.
class HopMeter {
public:
    HopMeter(int sampleRate, int channels, int hop);
    ~HopMeter();

    // The mix's next samples (planar float), from its start on.
    void add(const Velmor::AV::Frame& block);
    // Ends the mix; the levels of every hop, the last one shorter.
    HopLevels finish();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Mixing
