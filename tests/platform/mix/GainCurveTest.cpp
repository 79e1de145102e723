#include "platform/mix/GainCurve.h"
#include "platform/av/AudioBlock.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Mixing::GainCurve;

namespace {

TEST(GainCurveTest, AnEmptyCurveIsUnity) {
    const GainCurve curve(10);
    EXPECT_TRUE(curve.empty());
    EXPECT_EQ(curve.gainAt(123), 1.0f);
    Velmor::AV::Frame block = Velmor::AV::silentBlock(48000, 2, 4);
    Velmor::AV::channelOf(block, 0)[2] = 0.5f;
    curve.apply(block, 0);
    EXPECT_EQ(Velmor::AV::channelOf(block, 0)[2], 0.5f);
}

TEST(GainCurveTest, BetweenTwoValuesTheGainIsAStraightLine) {
    GainCurve curve(10);
    curve.append(1.0f);
    curve.append(0.0f);
    curve.append(0.5f);
    EXPECT_EQ(curve.gainAt(0), 1.0f);
    EXPECT_FLOAT_EQ(curve.gainAt(3), 0.7f);
    EXPECT_EQ(curve.gainAt(10), 0.0f);
    EXPECT_FLOAT_EQ(curve.gainAt(15), 0.25f);
    EXPECT_EQ(curve.gainAt(20), 0.5f);
    EXPECT_EQ(curve.gainAt(1000), 0.5f);
    EXPECT_EQ(curve.gainAt(-5), 1.0f);
}

TEST(GainCurveTest, ABlockIsWeighedByItsSamplesTimes) {
    GainCurve curve(4);
    curve.append(0.0f);
    curve.append(1.0f);
    Velmor::AV::Frame block = Velmor::AV::silentBlock(48000, 2, 4);
    for (int channel = 0; channel < 2; ++channel)
        std::fill_n(Velmor::AV::channelOf(block, channel), 4, 2.0f);
    curve.apply(block, 2);
    for (int channel = 0; channel < 2; ++channel) {
        EXPECT_EQ(Velmor::AV::channelOf(block, channel)[0], 1.0f);
        EXPECT_EQ(Velmor::AV::channelOf(block, channel)[1], 1.5f);
        EXPECT_EQ(Velmor::AV::channelOf(block, channel)[2], 2.0f);
        EXPECT_EQ(Velmor::AV::channelOf(block, channel)[3], 2.0f);
    }
}

TEST(GainCurveTest, TheHopMustBePositive) {
    EXPECT_THAT([] { GainCurve(0); },
                FailedWith<std::invalid_argument>("A gain curve's hop must be positive, not 0"));
}

} // namespace
