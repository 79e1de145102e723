#include "platform/render/VideoFrameTimes.h"

#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::mediaFixture;
using Velmor::Render::videoFrameTimes;

TEST(VideoFrameTimesTest, EveryPictureInShowingOrderFromTheTimelinesStart) {
    // 2 s at 25 frames a second, with B-frames stored out of showing order.
    const std::vector<std::int64_t> times = videoFrameTimes(mediaFixture("h264_aac.mp4"));
    ASSERT_EQ(times.size(), 50u);
    for (std::size_t i = 0; i < times.size(); ++i)
        EXPECT_EQ(times[i], std::int64_t(i) * 40000);
}

TEST(VideoFrameTimesTest, AVariableRateKeepsItsTimes) {
    const std::vector<std::int64_t> times = videoFrameTimes(mediaFixture("vfr.mp4"));
    ASSERT_EQ(times.size(), 150u);
    EXPECT_EQ(times[1], 55000);
    EXPECT_EQ(times[2], 80000);
}

TEST(VideoFrameTimesTest, ATimelineThatStartsLaterCountsFromItsStart) {
    const std::vector<std::int64_t> times = videoFrameTimes(mediaFixture("open_gop.ts"));
    ASSERT_FALSE(times.empty());
    // MPEG-TS counts from the file's first timestamp, the sound's here, not from its clock's 0.
    EXPECT_GE(times.front(), 0);
    EXPECT_LT(times.front(), 40000);
}

TEST(VideoFrameTimesTest, SoundAloneHasNone) {
    EXPECT_TRUE(videoFrameTimes(mediaFixture("tone.wav")).empty());
}

TEST(VideoFrameTimesTest, AMissingFileFailsAsTheDemuxerSays) {
    EXPECT_THAT(failureOf([] { videoFrameTimes("/nonexistent.mp4"); }),
                FailedWith<Velmor::AV::MediaError>(
                    "Can not open media file: /nonexistent.mp4: No such file or directory"));
}
