#include "platform/mix/VoicePlayer.h"
#include "platform/av/AudioBlock.h"
#include "tests/platform/mix/FakeSoundReaders.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Mixing::Fade;
using Mixing::Voice;
using Mixing::VoicePlayer;

namespace {

const Velmor::AV::AudioShape shape{Velmor::AV::planarFloat(), 48000, 2};

class VoicePlayerTest : public testing::Test {
protected:
    VoicePlayerTest() {
        readers.sounds["level"] = {[](std::int64_t) { return 0.5f; }};
        readers.sounds["index"] = {FakeSoundReaders::indexValue};
        readers.sounds["short"] = {FakeSoundReaders::indexValue, 48100};
    }

    // The left channel of [at, at + samples) played in blocks of `blockSize`.
    std::vector<float> play(VoicePlayer& player, std::int64_t at, int samples,
                            int blockSize = 4800) {
        std::vector<float> left;
        for (std::int64_t from = at; from < at + samples; from += blockSize) {
            const int size =
                static_cast<int>(std::min<std::int64_t>(blockSize, at + samples - from));
            Velmor::AV::Frame block = Velmor::AV::silentBlock(48000, 2, size);
            player.addTo(block, from);
            const float* values = Velmor::AV::channelOf(block, 0);
            left.insert(left.end(), values, values + size);
        }
        return left;
    }

    FakeSoundReaders readers;
};

TEST_F(VoicePlayerTest, AVoicePlaysItsFileFromInAtItsPlaceAndGain) {
    VoicePlayer player(Voice{"index", 1000, 4800, 9600, 0, -6.0206, {}, {}}, readers, shape);
    const std::vector<float> left = play(player, 0, 12000, 1000);
    EXPECT_EQ(left[4799], 0.0f);
    EXPECT_NEAR(left[4800], 48000 / 1e6 / 2, 1e-7);
    EXPECT_NEAR(left[9599], (48000 + 4799) / 1e6 / 2, 1e-7);
    EXPECT_EQ(left[9600], 0.0f);
    EXPECT_EQ(readers.log->opened.size(), 1u);
    EXPECT_EQ(readers.log->opened[0], std::make_pair(QString("index"), std::int64_t(1000)));
}

TEST_F(VoicePlayerTest, FadesAreStraightLinesOverTheirSamples) {
    VoicePlayer player(Voice{"level", 0, 0, 48000, 0, 0, Fade{0, 4800}, Fade{38400, 9600}}, readers,
                       shape);
    const std::vector<float> left = play(player, 0, 48000);
    EXPECT_EQ(left[0], 0.0f);
    EXPECT_FLOAT_EQ(left[1200], 0.125f);
    EXPECT_FLOAT_EQ(left[2400], 0.25f);
    EXPECT_EQ(left[4800], 0.5f);
    EXPECT_EQ(left[38400], 0.5f);
    EXPECT_FLOAT_EQ(left[43200], 0.25f);
    EXPECT_FLOAT_EQ(left[47999], 0.5f / 9600);
}

TEST_F(VoicePlayerTest, AnEqualPowerFadeFollowsAQuarterSine) {
    VoicePlayer in(Voice{"level", 0, 0, 9600, 0, 0, Fade{0, 9600, Fade::Curve::EqualPower}, {}},
                   readers, shape);
    VoicePlayer out(Voice{"level", 0, 0, 9600, 0, 0, {}, Fade{0, 9600, Fade::Curve::EqualPower}},
                    readers, shape);
    const std::vector<float> rising = play(in, 0, 9600);
    const std::vector<float> falling = play(out, 0, 9600);
    for (int index = 0; index < 9600; index += 97) {
        EXPECT_NEAR(rising[index], 0.5 * std::sin(M_PI / 2 * index / 9600), 1e-6);
        EXPECT_NEAR(rising[index] * rising[index] + falling[index] * falling[index], 0.25, 1e-6);
    }
}

TEST_F(VoicePlayerTest, ALoopStartsItsFileAgainEachPeriod) {
    VoicePlayer player(Voice{"index", 500, 100, 100 + 3 * 1000, 1000, 0, {}, {}}, readers, shape);
    const std::vector<float> left = play(player, 0, 4000, 700);
    EXPECT_FLOAT_EQ(left[100], 24000 / 1e6f);
    EXPECT_FLOAT_EQ(left[1099], 24999 / 1e6f);
    EXPECT_FLOAT_EQ(left[1100], 24000 / 1e6f);
    EXPECT_FLOAT_EQ(left[2100], 24000 / 1e6f);
    EXPECT_FLOAT_EQ(left[3099], 24999 / 1e6f);
    EXPECT_EQ(left[3100], 0.0f);
    EXPECT_EQ(readers.log->opened.size(), 3u);
}

TEST_F(VoicePlayerTest, ABlockThatDoesNotFollowOpensItsPlayAndPassesOverItsStart) {
    VoicePlayer whole(Voice{"index", 0, 0, 100000, 30000, -3, Fade{0, 50000}, {}}, readers, shape);
    const std::vector<float> all = play(whole, 0, 100000, 4800);
    VoicePlayer part(Voice{"index", 0, 0, 100000, 30000, -3, Fade{0, 50000}, {}}, readers, shape);
    const std::vector<float> from = play(part, 63333, 20000, 777);
    for (int index = 0; index < 20000; ++index)
        ASSERT_EQ(from[index], all[63333 + index]) << index;
    EXPECT_EQ(readers.log->opened.size(), 4u + 1u);
}

TEST_F(VoicePlayerTest, AFileThatEndsEarlyIsSilentAfter) {
    VoicePlayer player(Voice{"short", 0, 0, 96000, 0, 0, {}, {}}, readers, shape);
    const std::vector<float> left = play(player, 0, 96000);
    EXPECT_FLOAT_EQ(left[48099], 48099 / 1e6f);
    EXPECT_EQ(left[48100], 0.0f);
}

TEST_F(VoicePlayerTest, AMissingFileFailsAsItsReaderDoes) {
    VoicePlayer player(Voice{"gone.wav", 0, 0, 100, 0, 0, {}, {}}, readers, shape);
    Velmor::AV::Frame block = Velmor::AV::silentBlock(48000, 2, 100);
    EXPECT_THROW(player.addTo(block, 0), Velmor::AV::MediaError);
}

} // namespace
