#include "platform/av/Frame.h"

#include "platform/av/MediaError.h"
#include "platform/av/Rational.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

using EditorService::Testing::FailedWith;
using Velmor::AV::Frame;

TEST(FrameTest, ANewFrameIsEmpty) {
    const Frame frame;
    ASSERT_NE(frame.get(), nullptr);
    EXPECT_EQ(frame->data[0], nullptr);
    EXPECT_EQ(frame.width(), 0);
}

TEST(FrameTest, APictureHasItsSizeFormatAndZeroedBuffers) {
    const Frame frame = Frame::picture(7, 3, AV_PIX_FMT_RGB24);
    EXPECT_EQ(frame.width(), 7);
    EXPECT_EQ(frame.height(), 3);
    EXPECT_EQ(frame.format(), AV_PIX_FMT_RGB24);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 7 * 3; ++x)
            EXPECT_EQ(frame->data[0][y * frame->linesize[0] + x], 0);
    }
}

TEST(FrameTest, AnImpossiblePictureFailsWithTheReason) {
    EXPECT_THAT([&] { Frame::picture(-1, 10, AV_PIX_FMT_RGB24); },
                FailedWith<Velmor::AV::MediaError>("Can not allocate a picture: Invalid argument"));
}

TEST(FrameTest, MovingHandsTheSameFrameOver) {
    Frame first = Frame::picture(2, 2, AV_PIX_FMT_GRAY8);
    AVFrame* const raw = first.get();
    Frame second = std::move(first);
    EXPECT_EQ(second.get(), raw);
}

TEST(FrameTest, ResetDropsTheBuffersAndKeepsTheFrame) {
    Frame frame = Frame::picture(2, 2, AV_PIX_FMT_GRAY8);
    AVFrame* const raw = frame.get();
    frame.reset();
    EXPECT_EQ(frame.get(), raw);
    EXPECT_EQ(frame->data[0], nullptr);
}

TEST(FrameTest, TimestampPrefersTheBestEffortOne) {
    Frame frame;
    frame->pts = 5;
    frame->best_effort_timestamp = AV_NOPTS_VALUE;
    EXPECT_EQ(frame.timestamp(), 5);
    frame->best_effort_timestamp = 7;
    EXPECT_EQ(frame.timestamp(), 7);
}

TEST(FrameTest, ThePacketDecodingTimestampIsThatOfThePacketItCameFrom) {
    Frame frame;
    EXPECT_EQ(frame.packetDecodingTimestamp(), Velmor::AV::noTimestamp);
    frame->pkt_dts = -1024;
    EXPECT_EQ(frame.packetDecodingTimestamp(), -1024);
}
