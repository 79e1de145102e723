#include "platform/mix/LoudnessMeter.h"
#include "platform/av/AudioBlock.h"

#include <cmath>
#include <gtest/gtest.h>

using Mixing::LoudnessMeter;

namespace {

// Seconds of a 997 Hz sine of `amplitude` on both channels, in blocks of 100 ms.
void addSine(LoudnessMeter& meter, double amplitude, int seconds) {
    for (int block = 0; block < seconds * 10; ++block) {
        Velmor::AV::Frame samples = Velmor::AV::silentBlock(48000, 2, 4800);
        for (int index = 0; index < 4800; ++index) {
            const double time = (block * 4800 + index) / 48000.0;
            const float value = static_cast<float>(amplitude * std::sin(2 * M_PI * 997 * time));
            Velmor::AV::channelOf(samples, 0)[index] = value;
            Velmor::AV::channelOf(samples, 1)[index] = value;
        }
        samples.setTimestamp(block * 4800);
        meter.add(samples);
    }
}

TEST(LoudnessMeterTest, ASineOnBothChannelsMeasuresItsPeakLevel) {
    LoudnessMeter meter(48000, 2);
    addSine(meter, 0.1, 3);
    // A full-scale 997 Hz sine on one channel measures -3.01 LUFS; on two, 0.
    EXPECT_NEAR(meter.finish(), -20, 0.1);
}

TEST(LoudnessMeterTest, SilenceMeasuresTheFloor) {
    LoudnessMeter meter(48000, 2);
    addSine(meter, 0, 2);
    EXPECT_EQ(meter.finish(), -70);
}

} // namespace
