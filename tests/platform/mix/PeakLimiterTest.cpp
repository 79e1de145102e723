#include "platform/mix/PeakLimiter.h"

#include <cmath>
#include <gtest/gtest.h>

using Mixing::limitedGain;

namespace {

double decibels(double gain) {
    return 20 * std::log10(gain);
}

TEST(PeakLimiterTest, AMixBelowTheCeilingIsOnlyRaised) {
    const auto curve = limitedGain({std::vector<float>(20, 0.1f), {}}, 480, 6, -1);
    ASSERT_EQ(curve.size(), 21u);
    EXPECT_EQ(curve.hop(), 480);
    for (std::size_t index = 0; index < curve.size(); ++index)
        EXPECT_NEAR(decibels(curve.value(index)), 6, 1e-4);
}

TEST(PeakLimiterTest, AHopOverTheCeilingIsTakenDownAtBothEndsAndLetGoSlowly) {
    std::vector<float> peaks(60, 0.1f);
    peaks[20] = 1.0f;
    const auto curve = limitedGain({peaks, {}}, 480, 6, -1);
    // Raised by 6 dB the peak would reach +6 dBTP: both ends of its hop come down 7 dB.
    EXPECT_NEAR(decibels(curve.value(20)), -1, 1e-4);
    EXPECT_NEAR(decibels(curve.value(21)), -1, 1e-4);
    // The gain falls towards it by at most 6 dB a hop, and rises after it by at most 1 dB.
    EXPECT_NEAR(decibels(curve.value(19)), 5, 1e-4);
    EXPECT_NEAR(decibels(curve.value(18)), 6, 1e-4);
    EXPECT_NEAR(decibels(curve.value(22)), 0, 1e-4);
    EXPECT_NEAR(decibels(curve.value(27)), 5, 1e-4);
    EXPECT_NEAR(decibels(curve.value(28)), 6, 1e-4);
}

TEST(PeakLimiterTest, NoHopPassesTheCeiling) {
    std::vector<float> peaks;
    for (int index = 0; index < 500; ++index)
        peaks.push_back(static_cast<float>(0.05 + 0.9 * std::abs(std::sin(index * 0.37))));
    const auto curve = limitedGain({peaks, {}}, 480, 9, -1.5);
    for (std::size_t index = 0; index < peaks.size(); ++index) {
        EXPECT_LE(decibels(peaks[index] * curve.value(index)), -1.5 + 1e-4) << index;
        EXPECT_LE(decibels(peaks[index] * curve.value(index + 1)), -1.5 + 1e-4) << index;
    }
}

TEST(PeakLimiterTest, WhatTheLimitingTakesFromTheLoudnessIsGivenBack) {
    // A steady level with a peak every 20 hops that has to come down 6 dB.
    std::vector<float> peaks(200, 0.25f);
    for (std::size_t index = 10; index < peaks.size(); index += 20)
        peaks[index] = 1.0f;
    const std::vector<float> powers(200, 0.03f);
    const auto curve = limitedGain({peaks, powers}, 480, 5, -1);
    double kept = 0;
    for (std::size_t index = 0; index < peaks.size(); ++index) {
        const double from = curve.value(index);
        const double to = curve.value(index + 1);
        kept += (from * from + from * to + to * to) / 3 / peaks.size();
        EXPECT_LE(decibels(peaks[index] * std::max(from, to)), -1 + 1e-4) << index;
    }
    EXPECT_NEAR(10 * std::log10(kept), 5, 0.05);
}

TEST(PeakLimiterTest, NoMoreThanSixDecibelsAreGivenBack) {
    const std::vector<float> peaks(100, 1.0f);
    const auto curve = limitedGain({peaks, std::vector<float>(100, 0.1f)}, 480, 12, -1);
    EXPECT_NEAR(decibels(curve.value(50)), -1, 1e-4);
}

} // namespace
