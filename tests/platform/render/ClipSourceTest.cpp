#include "platform/render/ClipSource.h"

#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/render/Cancelled.h"
#include "platform/render/Stop.h"
#include "platform/render/Writer.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;
using Velmor::AV::Frame;
using Velmor::AV::MediaError;
using Velmor::Render::AudioFormat;
using Velmor::Render::Cancelled;
using Velmor::Render::ClipSettings;
using Velmor::Render::ClipSource;
using Velmor::Render::FrameSource;
using Velmor::Render::Stop;

namespace {

ClipSettings clip(const std::string& name, std::int64_t fromMs = -1, std::int64_t toMs = -1) {
    ClipSettings settings;
    settings.path = mediaFixture(name);
    if (fromMs >= 0)
        settings.range = ClipSettings::Range{fromMs * 1000, toMs * 1000};
    return settings;
}

std::vector<Frame> pullAll(FrameSource& source) {
    std::vector<Frame> frames;
    Frame frame;
    while (source.next(frame))
        frames.push_back(std::exchange(frame, Frame()));
    return frames;
}

// The video and the sound pulled each on a thread of its own, as a render pulls them.
std::pair<std::vector<Frame>, std::vector<Frame>> pullBoth(ClipSource& source) {
    const AudioFormat wanted{AV_SAMPLE_FMT_FLTP, source.inputAudio()->sampleRate,
                             source.inputAudio()->channels};
    FrameSource* audio = source.audio(wanted);
    std::vector<Frame> sound;
    std::thread soundThread([&] { sound = pullAll(*audio); });
    std::vector<Frame> pictures = pullAll(*source.video());
    soundThread.join();
    return {std::move(pictures), std::move(sound)};
}

std::int64_t samplesOf(const std::vector<Frame>& blocks) {
    std::int64_t samples = 0;
    for (const Frame& block : blocks)
        samples += block.samples();
    return samples;
}

// The luma of a picture, row by row.
std::vector<unsigned char> luma(const Frame& picture) {
    std::vector<unsigned char> bytes;
    for (int row = 0; row < picture.height(); ++row) {
        const unsigned char* line = picture->data[0] + row * picture->linesize[0];
        bytes.insert(bytes.end(), line, line + picture.width());
    }
    return bytes;
}

} // namespace

class ClipSourceTest : public testing::Test {
protected:
    Stop stop;
};

TEST_F(ClipSourceTest, ThePicturesStartAtZeroInTheStreamsTimeBaseAndTheSoundFollowsWithoutGaps) {
    ClipSource source(clip("h264_aac.mp4"), stop);
    EXPECT_EQ(source.durationMs(), 2000);
    const auto format = source.video()->format();
    EXPECT_EQ(format.width, 320);
    EXPECT_EQ(format.height, 240);
    EXPECT_EQ(format.frameRate, (Velmor::AV::Rational{25, 1}));
    const auto [pictures, sound] = pullBoth(source);
    ASSERT_EQ(pictures.size(), 50u);
    EXPECT_EQ(pictures.front().timestamp(), 0);
    EXPECT_EQ(pictures[1].timestamp(), format.timeBase.den / 25);
    ASSERT_FALSE(sound.empty());
    EXPECT_EQ(sound.front().timestamp(), 0);
    std::int64_t next = 0;
    for (const Frame& block : sound) {
        EXPECT_EQ(block.timestamp(), next);
        next += block.samples();
    }
}

TEST_F(ClipSourceTest, ARangeStartsOnItsFirstFrameAndTheSoundThereToTheSample) {
    // Frames every 40 ms: the first at or after 500 ms is at 520 ms.
    ClipSource source(clip("h264_aac.mp4", 500, 1500), stop);
    EXPECT_EQ(source.durationMs(), 1000);
    const auto [pictures, sound] = pullBoth(source);
    EXPECT_EQ(pictures.size(), 25u);
    EXPECT_EQ(pictures.front().timestamp(), 0);
    EXPECT_EQ(sound.front().timestamp(), 0);
    // From 520 ms to 1500 ms at 44100 Hz.
    EXPECT_EQ(samplesOf(sound), 43218);
}

TEST_F(ClipSourceTest, ThePictureAtATimeIsTheSameWhereverTheRangeBegins) {
    ClipSettings wholeClip = clip("h264_aac.mp4");
    wholeClip.audio = false;
    ClipSource whole(wholeClip, stop);
    const std::vector<Frame> all = pullAll(*whole.video());
    // A key frame every second: the part starts in the middle of a group of pictures.
    ClipSettings later = clip("h264_aac.mp4", 600, 1600);
    later.audio = false;
    ClipSource part(later, stop);
    const std::vector<Frame> some = pullAll(*part.video());
    ASSERT_EQ(some.size(), 25u);
    for (std::size_t index = 0; index < some.size(); ++index)
        EXPECT_EQ(luma(some[index]), luma(all[15 + index])) << "picture " << index;
}

TEST_F(ClipSourceTest, ARangeOfATransportStreamStartsOnItsFirstFrameThroughOpenGops) {
    // Timestamps from 1.459 s, pictures every 40 ms from 1.48 s, key frames a second apart
    // after B-frames that show before them; seeking by timestamp lands past the key frame.
    ClipSettings wholeClip = clip("open_gop.ts");
    wholeClip.audio = false;
    ClipSource whole(wholeClip, stop);
    const std::vector<Frame> all = pullAll(*whole.video());
    ClipSettings part = clip("open_gop.ts", 930, 1930);
    part.audio = false;
    ClipSource source(part, stop);
    const std::vector<Frame> some = pullAll(*source.video());
    // The first picture at or after 930 ms is at 941 ms, the 24th.
    ASSERT_EQ(some.size(), 25u);
    for (std::size_t index = 0; index < some.size(); ++index)
        EXPECT_EQ(luma(some[index]), luma(all[23 + index])) << "picture " << index;
}

TEST_F(ClipSourceTest, ARangeOfAnMp4WhoseTimestampsStartLateCountsFromZero) {
    // 13000 ms long, its pictures from 10 s.
    ClipSettings part = clip("start_10s.mp4", 10500, 11500);
    ClipSource source(part, stop);
    EXPECT_EQ(source.durationMs(), 1000);
    EXPECT_EQ(pullAll(*source.video()).size(), 25u);
}

TEST_F(ClipSourceTest, ARangeOutsideTheInputFailsNamingBoth) {
    EXPECT_THAT([&] { ClipSource(clip("h264_aac.mp4", 5000, 9000), stop); },
                FailedWith<MediaError>("Range 5000:9000 ms is outside "
                                       + mediaFixture("h264_aac.mp4") + " (2000 ms)"));
}

TEST_F(ClipSourceTest, ARangeWithoutAPictureFails) {
    EXPECT_THAT([&] { ClipSource(clip("h264_aac.mp4", 1990, 2000), stop); },
                FailedWith<MediaError>("Can not export " + mediaFixture("h264_aac.mp4")
                                       + ": no video frame in the range"));
}

TEST_F(ClipSourceTest, AnInputWithoutVideoFails) {
    EXPECT_THAT(
        [&] { ClipSource(clip("tone.wav"), stop); },
        FailedWith<MediaError>("Can not export " + mediaFixture("tone.wav") + ": it has no video"));
}

TEST_F(ClipSourceTest, AnInputWithoutVideoGivesItsSoundAloneFromZeroWhenVideoIsNotRequired) {
    ClipSettings settings = clip("tone.wav");
    settings.requireVideo = false;
    ClipSource source(settings, stop);
    EXPECT_EQ(source.video(), nullptr);
    ASSERT_TRUE(source.inputAudio());
    EXPECT_EQ(source.inputAudio()->sampleRate, 44100);
    const std::vector<Frame> sound = pullAll(*source.audio({AV_SAMPLE_FMT_FLTP, 44100, 1}));
    EXPECT_EQ(sound.front().timestamp(), 0);
    EXPECT_EQ(samplesOf(sound), 44100);
}

TEST_F(ClipSourceTest, AnInputWithoutAudioHasNoSound) {
    ClipSource source(clip("noaudio.mp4"), stop);
    EXPECT_FALSE(source.inputAudio());
    EXPECT_EQ(source.audio({AV_SAMPLE_FMT_FLTP, 44100, 2}), nullptr);
    EXPECT_EQ(pullAll(*source.video()).size(), 50u);
}

TEST_F(ClipSourceTest, SoundNotAskedForIsLeftOut) {
    ClipSettings settings = clip("h264_aac.mp4");
    settings.audio = false;
    ClipSource source(settings, stop);
    EXPECT_FALSE(source.inputAudio());
    EXPECT_EQ(pullAll(*source.video()).size(), 50u);
}

TEST_F(ClipSourceTest, AStoppedRenderEndsTheOpeningWithCancelled) {
    stop.request();
    EXPECT_THAT([&] { ClipSource(clip("h264_aac.mp4"), stop); },
                FailedWith<Cancelled>("Render cancelled"));
}

TEST_F(ClipSourceTest, AnUnreadableInputFailsWithTheLibrarysReason) {
    EXPECT_THAT([&] { ClipSource(clip("truncated.mp4"), stop); },
                FailedWith<MediaError>("Can not open media file: " + mediaFixture("truncated.mp4")
                                       + ": Invalid data found when processing input"));
}
