#include "platform/mix/HopMeter.h"
#include "platform/av/AudioBlock.h"

#include <cmath>
#include <gtest/gtest.h>

using Mixing::HopMeter;

namespace {

TEST(HopMeterTest, APeakBetweenSamplesIsFoundInItsHop) {
    HopMeter meter(48000, 2, 480);
    for (int block = 0; block < 10; ++block) {
        Velmor::AV::Frame samples = Velmor::AV::silentBlock(48000, 2, 480);
        // A quarter of the rate, a quarter turn out of phase: every sample at 0.707 of the
        // peak, which lies between them.
        for (int index = 0; block == 5 && index < 480; ++index)
            Velmor::AV::channelOf(samples, 1)[index] =
                static_cast<float>(0.5 * std::sin(M_PI / 2 * index + M_PI / 4));
        samples.setTimestamp(block * 480);
        meter.add(samples);
    }
    const Mixing::HopLevels levels = meter.finish();
    ASSERT_EQ(levels.peaks.size(), 10u);
    ASSERT_EQ(levels.powers.size(), 10u);
    EXPECT_EQ(levels.peaks[2], 0.0f);
    EXPECT_NEAR(levels.peaks[5], 0.5, 0.02);
    EXPECT_LT(levels.peaks[7], 0.01);
    // A sine of 0.5 on one channel of two.
    EXPECT_NEAR(levels.powers[5], 0.125 / 2, 0.005);
    EXPECT_EQ(levels.powers[2], 0.0f);
}

} // namespace
