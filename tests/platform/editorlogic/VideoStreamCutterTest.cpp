#include "platform/editorlogic/VideoStreamCutter.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;

namespace {

// 25 frames a second, a key frame each second: frames at 0, 40, 80, ... 1960 ms.
class VideoStreamCutterTest : public testing::Test {
protected:
    Velmor::AV::Demuxer demuxer{mediaFixture("noaudio.mp4")};
    Velmor::AV::Decoder decoder{demuxer, 0};
    Media::VideoStreamCutter cutter{demuxer, decoder};

    std::int64_t frameShownAt(std::int64_t milliseconds) {
        cutter.frameAt(milliseconds);
        return cutter.frameMilliseconds();
    }
};

} // namespace

TEST_F(VideoStreamCutterTest, GivesTheLastFrameShownAtOrBeforeTheTime) {
    EXPECT_EQ(frameShownAt(0), 0);
    EXPECT_EQ(frameShownAt(39), 0);
    EXPECT_EQ(frameShownAt(40), 40);
    EXPECT_EQ(frameShownAt(1500), 1480);
}

TEST_F(VideoStreamCutterTest, TheEndOfTheFileShowsTheLastFrame) {
    EXPECT_EQ(frameShownAt(2000), 1960);
    EXPECT_EQ(frameShownAt(1999), 1960);
}

TEST_F(VideoStreamCutterTest, ATimePastTheEndFailsNamingBothTimes) {
    EXPECT_THAT([&] { cutter.frameAt(90000); },
                FailedWith<Velmor::AV::MediaError>("Time 90000 ms is past the end of "
                                                   + mediaFixture("noaudio.mp4") + " (2000 ms)"));
}

TEST_F(VideoStreamCutterTest, TimesAheadWithinAKeyFrameIntervalDecodeOnWithoutSeeking) {
    frameShownAt(100);
    const int seeks = cutter.seeks();
    EXPECT_EQ(frameShownAt(200), 200);
    EXPECT_EQ(frameShownAt(960), 960);
    EXPECT_EQ(cutter.seeks(), seeks);
}

TEST_F(VideoStreamCutterTest, TheSameTimeTwiceGivesTheSameFrameWithoutSeeking) {
    frameShownAt(500);
    const int seeks = cutter.seeks();
    EXPECT_EQ(frameShownAt(500), 480);
    EXPECT_EQ(cutter.seeks(), seeks);
}

TEST_F(VideoStreamCutterTest, ATimeBehindOrPastTheNextKeyFrameSeeks) {
    frameShownAt(1500);
    int seeks = cutter.seeks();
    EXPECT_EQ(frameShownAt(100), 80);
    EXPECT_EQ(cutter.seeks(), seeks + 1);
    seeks = cutter.seeks();
    EXPECT_EQ(frameShownAt(1800), 1800);
    EXPECT_EQ(cutter.seeks(), seeks + 1);
}

TEST_F(VideoStreamCutterTest, AfterTheEndATimeBackInTheFileIsFoundAgain) {
    EXPECT_EQ(frameShownAt(2000), 1960);
    EXPECT_EQ(frameShownAt(40), 40);
}

TEST(VideoStreamCutterStillTest, AStillShowsItsOneFrameAtTimeZero) {
    Velmor::AV::Demuxer demuxer(mediaFixture("still.png"));
    Velmor::AV::Decoder decoder(demuxer, 0);
    Media::VideoStreamCutter cutter(demuxer, decoder);
    EXPECT_EQ(cutter.frameAt(0).width(), 64);
    EXPECT_EQ(cutter.frameMilliseconds(), 0);
}

TEST(VideoStreamCutterStillTest, AStillTellsNoDurationAndShowsItsFrameAtAnyTime) {
    Velmor::AV::Demuxer demuxer(mediaFixture("still.png"));
    Velmor::AV::Decoder decoder(demuxer, 0);
    Media::VideoStreamCutter cutter(demuxer, decoder);
    EXPECT_EQ(cutter.frameAt(5000).width(), 64);
    EXPECT_EQ(cutter.frameMilliseconds(), 0);
}

namespace {

// The frame on screen at each time, in a fresh cutter of the file's best video stream.
std::int64_t frameShownIn(const std::string& fixture, std::int64_t milliseconds) {
    Velmor::AV::Demuxer demuxer(mediaFixture(fixture));
    Velmor::AV::Decoder decoder(demuxer, demuxer.bestStream("video"));
    Media::VideoStreamCutter cutter(demuxer, decoder);
    cutter.frameAt(milliseconds);
    return cutter.frameMilliseconds();
}

} // namespace

TEST(VideoStreamCutterTimelineTest, ATransportStreamCountsFromItsFirstTimestampThroughOpenGops) {
    // Timestamps from 1.459 s (the sound's), pictures from 1.48 s; key frames a second apart,
    // each after B-frames that show before it.
    EXPECT_EQ(frameShownIn("open_gop.ts", 0), 21);
    EXPECT_EQ(frameShownIn("open_gop.ts", 999), 981);
    EXPECT_EQ(frameShownIn("open_gop.ts", 2000), 1981);
}

TEST(VideoStreamCutterTimelineTest, AnMp4WhoseTimestampsStartLateCountsFromZero) {
    // 13000 ms long, its pictures from 10 s: before them the first one shows.
    EXPECT_EQ(frameShownIn("start_10s.mp4", 6500), 10000);
    EXPECT_EQ(frameShownIn("start_10s.mp4", 11000), 11000);
}
