#include "platform/mix/Ducker.h"
#include "platform/av/AudioBlock.h"

#include <cmath>
#include <gtest/gtest.h>

using Mixing::Ducker;
using Mixing::GainCurve;

namespace {

constexpr int rate = 48000;
constexpr int hop = 480;

// Side-chain blocks of a level, 10 ms each.
Velmor::AV::Frame sideChain(float level) {
    Velmor::AV::Frame block = Velmor::AV::silentBlock(rate, 2, hop);
    for (int channel = 0; channel < 2; ++channel)
        std::fill_n(Velmor::AV::channelOf(block, channel), hop, level);
    return block;
}

double decibels(float gain) {
    return 20 * std::log10(gain);
}

class DuckerTest : public testing::Test {
protected:
    // Feeds `hops` hops of silence, `loud` hops at -6 dB and silence to `hops` in all.
    void feed(Ducker& ducker, int quietBefore, int loud, int quietAfter) {
        for (int index = 0; index < quietBefore; ++index)
            ducker.feed(sideChain(0));
        for (int index = 0; index < loud; ++index)
            ducker.feed(sideChain(0.5f));
        for (int index = 0; index < quietAfter; ++index)
            ducker.feed(sideChain(0));
        ducker.finish();
    }

    Project::Duck duck{-12, -30, 250, 1500};
    GainCurve curve{hop};
};

TEST_F(DuckerTest, TheTrackFallsByTheAmountInTheAttackAndRisesInTheRelease) {
    Ducker ducker(duck, rate, curve);
    feed(ducker, 100, 100, 250);
    ASSERT_EQ(curve.size(), 451u);
    EXPECT_EQ(curve.value(0), 1.0f);
    EXPECT_EQ(curve.value(100), 1.0f);
    // The level crosses the threshold with the first loud hop, and the gain falls 12 dB in
    // 25 hops.
    EXPECT_NEAR(decibels(curve.value(101)), -12.0 / 25, 1e-4);
    EXPECT_NEAR(decibels(curve.value(113)), -12.0 * 13 / 25, 1e-4);
    EXPECT_NEAR(decibels(curve.value(125)), -12, 1e-4);
    EXPECT_NEAR(decibels(curve.value(200)), -12, 1e-4);
    // The level's window holds the voice for four hops more, then the gain rises 12 dB in 150.
    EXPECT_NEAR(decibels(curve.value(204)), -12, 1e-4);
    EXPECT_NEAR(decibels(curve.value(205)), -12 + 12.0 / 150, 1e-4);
    EXPECT_NEAR(decibels(curve.value(279)), -6, 1e-4);
    EXPECT_NEAR(decibels(curve.value(354)), 0, 1e-4);
    EXPECT_EQ(curve.value(450), 1.0f);
}

TEST_F(DuckerTest, ASideChainBelowTheThresholdLeavesTheTrack) {
    duck.thresholdDb = -3;
    Ducker ducker(duck, rate, curve);
    feed(ducker, 10, 50, 10);
    for (std::size_t index = 0; index < curve.size(); ++index)
        EXPECT_EQ(curve.value(index), 1.0f);
}

TEST_F(DuckerTest, NoAttackOrReleaseMovesAtOnce) {
    duck.attackMs = 0;
    duck.releaseMs = 0;
    Ducker ducker(duck, rate, curve);
    feed(ducker, 10, 10, 10);
    EXPECT_EQ(curve.value(10), 1.0f);
    EXPECT_NEAR(decibels(curve.value(11)), -12, 1e-4);
    EXPECT_NEAR(decibels(curve.value(24)), -12, 1e-4);
    EXPECT_EQ(curve.value(25), 1.0f);
}

TEST_F(DuckerTest, ALastShorterHopWritesItsGain) {
    Ducker ducker(duck, rate, curve);
    ducker.feed(sideChain(0.5f));
    Velmor::AV::Frame part = Velmor::AV::silentBlock(rate, 2, 100);
    ducker.feed(part);
    ducker.finish();
    EXPECT_EQ(curve.size(), 3u);
}

TEST_F(DuckerTest, BlocksOfAnySizeGiveTheSameGains) {
    GainCurve whole(hop);
    Ducker inHops(duck, rate, whole);
    feed(inHops, 30, 30, 30);
    Ducker inOne(duck, rate, curve);
    Velmor::AV::Frame block = Velmor::AV::silentBlock(rate, 2, 90 * hop);
    for (int channel = 0; channel < 2; ++channel)
        std::fill_n(Velmor::AV::channelOf(block, channel) + 30 * hop, 30 * hop, 0.5f);
    inOne.feed(block);
    inOne.finish();
    ASSERT_EQ(curve.size(), whole.size());
    for (std::size_t index = 0; index < curve.size(); ++index)
        EXPECT_EQ(curve.value(index), whole.value(index)) << index;
}

} // namespace
