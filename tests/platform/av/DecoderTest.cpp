#include "platform/av/Decoder.h"

#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"
#include "tests/support/MediaFixtures.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

using EditorService::Testing::mediaFixture;
using Velmor::AV::Decoder;
using Velmor::AV::Demuxer;
using Velmor::AV::Frame;
using Velmor::AV::Packet;

namespace {

int countFrames(const std::string& name, const std::string& type) {
    Demuxer demuxer(mediaFixture(name));
    Decoder decoder(demuxer, demuxer.bestStream(type));
    Frame frame;
    int frames = 0;
    while (decoder.decodeNext(demuxer, frame))
        ++frames;
    EXPECT_TRUE(decoder.drained());
    return frames;
}

} // namespace

TEST(DecoderTest, DecodesEveryVideoFrameAndDrainsAtTheEnd) {
    EXPECT_EQ(countFrames("noaudio.mp4", "video"), 50);
    EXPECT_EQ(countFrames("vp9_opus.mkv", "video"), 50);
    EXPECT_EQ(countFrames("clip.mov", "video"), 60);
}

TEST(DecoderTest, DecodesAudioBesideVideoDroppingTheOtherStream) {
    Demuxer demuxer(mediaFixture("h264_aac.mp4"));
    Decoder decoder(demuxer, demuxer.bestStream("audio"));
    Frame frame;
    std::int64_t samples = 0;
    while (decoder.decodeNext(demuxer, frame))
        samples += frame->nb_samples;
    EXPECT_NEAR(static_cast<double>(samples), 88200, 2048);
}

TEST(DecoderTest, FramesComeInDisplayOrderWithTheirTimestamps) {
    Demuxer demuxer(mediaFixture("noaudio.mp4"));
    Decoder decoder(demuxer, 0);
    Frame frame;
    std::int64_t last = -1;
    while (decoder.decodeNext(demuxer, frame)) {
        EXPECT_GT(frame.timestamp(), last);
        last = frame.timestamp();
        EXPECT_EQ(frame.width(), 320);
        EXPECT_EQ(frame.height(), 240);
    }
}

TEST(DecoderTest, AfterASeekAndFlushDecodingStartsAtTheKeyFrame) {
    Demuxer demuxer(mediaFixture("noaudio.mp4"));
    Decoder decoder(demuxer, 0);
    const AVRational timeBase = demuxer.stream(0)->time_base;
    Frame frame;
    ASSERT_TRUE(decoder.decodeNext(demuxer, frame));
    demuxer.seek(0, av_rescale_q(1500, AVRational{1, 1000}, timeBase));
    decoder.flush();
    ASSERT_TRUE(decoder.decodeNext(demuxer, frame));
    // A key frame each second: the frame at 1 s is the one at or before 1.5 s.
    EXPECT_EQ(av_rescale_q(frame.timestamp(), timeBase, AVRational{1, 1000}), 1000);
}

// ffprobe shows "has_b_frames=2" for noaudio.mp4 and its first packets at dts -1024, -512, 0:
// one thread holding two frames back hands the first frame out on the third packet.
TEST(DecoderTest, AFrameTellsThePacketThatHandedItOutInDecodingOrder) {
    Demuxer demuxer(mediaFixture("noaudio.mp4"));
    Decoder decoder(demuxer, 0, 1);
    Frame frame;
    ASSERT_TRUE(decoder.decodeNext(demuxer, frame));
    EXPECT_EQ(frame.timestamp(), 0);
    EXPECT_EQ(decoder.reorderDepth(), 2);
    EXPECT_EQ(frame.packetDecodingTimestamp(), 0);
}

TEST(DecoderTest, AStreamWithoutReorderingHoldsNoFrameBack) {
    Demuxer demuxer(mediaFixture("still.png"));
    Decoder decoder(demuxer, 0);
    Frame frame;
    ASSERT_TRUE(decoder.decodeNext(demuxer, frame));
    EXPECT_EQ(decoder.reorderDepth(), 0);
}

TEST(DecoderTest, DecodesOddSizesAndStills) {
    EXPECT_EQ(countFrames("wide_1921x1080.mp4", "video"), 25);
    EXPECT_EQ(countFrames("still.png", "video"), 1);
}
