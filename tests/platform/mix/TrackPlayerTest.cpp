#include "platform/mix/TrackPlayer.h"
#include "platform/av/AudioBlock.h"
#include "tests/platform/mix/FakeSoundReaders.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Mixing::TrackPlayer;
using Mixing::Voice;

namespace {

const Velmor::AV::AudioShape shape{Velmor::AV::planarFloat(), 48000, 2};

TEST(TrackPlayerTest, VoicesThatOverlapAddUpAndGoWhenTheyEnd) {
    FakeSoundReaders readers;
    readers.sounds["level"] = {[](std::int64_t) { return 0.25f; }};
    TrackPlayer track(
        {Voice{"level", 0, 0, 1000, 0, 0, {}, {}}, Voice{"level", 0, 500, 2000, 0, 0, {}, {}}},
        readers, shape);
    Velmor::AV::Frame block = Velmor::AV::silentBlock(48000, 2, 1000);
    track.addTo(block, 0);
    EXPECT_EQ(Velmor::AV::channelOf(block, 0)[499], 0.25f);
    EXPECT_EQ(Velmor::AV::channelOf(block, 0)[500], 0.5f);
    EXPECT_EQ(Velmor::AV::channelOf(block, 1)[999], -0.5f);
    EXPECT_EQ(track.playing(), 2);
    EXPECT_EQ(readers.log->open, 2);
    Velmor::AV::Frame next = Velmor::AV::silentBlock(48000, 2, 1000);
    track.addTo(next, 1000);
    EXPECT_EQ(Velmor::AV::channelOf(next, 0)[0], 0.25f);
    EXPECT_EQ(track.playing(), 1);
    EXPECT_EQ(readers.log->open, 1);
    Velmor::AV::Frame after = Velmor::AV::silentBlock(48000, 2, 1000);
    track.addTo(after, 2000);
    EXPECT_EQ(Velmor::AV::channelOf(after, 0)[0], 0.0f);
    EXPECT_EQ(track.playing(), 0);
    EXPECT_EQ(readers.log->open, 0);
}

TEST(TrackPlayerTest, AVoiceOpensNothingBeforeItSounds) {
    FakeSoundReaders readers;
    TrackPlayer track({Voice{"a.mp4", 0, 5000, 6000, 0, 0, {}, {}}}, readers, shape);
    Velmor::AV::Frame block = Velmor::AV::silentBlock(48000, 2, 1000);
    track.addTo(block, 0);
    EXPECT_TRUE(readers.log->opened.empty());
}

} // namespace
