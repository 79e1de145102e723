#include "platform/av/AudioFifo.h"

#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

using EditorService::Testing::FailedWith;
using namespace Velmor::AV;

namespace {

// Two planar float channels, each sample its own index (the right channel negated).
Frame block(int samples, int first) {
    Frame frame;
    frame->format = AV_SAMPLE_FMT_FLTP;
    frame->sample_rate = 44100;
    av_channel_layout_default(&frame->ch_layout, 2);
    frame->nb_samples = samples;
    EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    for (int index = 0; index < samples; ++index) {
        reinterpret_cast<float*>(frame->data[0])[index] = static_cast<float>(first + index);
        reinterpret_cast<float*>(frame->data[1])[index] = -static_cast<float>(first + index);
    }
    return frame;
}

float sample(const Frame& frame, int channel, int index) {
    return reinterpret_cast<const float*>(frame->data[channel])[index];
}

} // namespace

TEST(AudioFifoTest, BlocksOfAnySizeComeOutInFramesOfTheEncodersSizeNumberedBySample) {
    AudioFifo fifo(AV_SAMPLE_FMT_FLTP, 44100, 2, 1024);
    fifo.write(block(700, 0));
    Frame frame;
    EXPECT_FALSE(fifo.read(frame));
    fifo.write(block(700, 700));
    ASSERT_TRUE(fifo.read(frame));
    EXPECT_EQ(frame.samples(), 1024);
    EXPECT_EQ(frame.timestamp(), 0);
    EXPECT_EQ(frame->sample_rate, 44100);
    EXPECT_EQ(sample(frame, 0, 1023), 1023.0f);
    EXPECT_EQ(sample(frame, 1, 1023), -1023.0f);
    EXPECT_EQ(fifo.size(), 376);
    EXPECT_FALSE(fifo.read(frame));
    ASSERT_TRUE(fifo.read(frame, true));
    EXPECT_EQ(frame.samples(), 376);
    EXPECT_EQ(frame.timestamp(), 1024);
    EXPECT_EQ(sample(frame, 0, 0), 1024.0f);
    EXPECT_FALSE(fifo.read(frame, true));
}

TEST(AudioFifoTest, APartOfABlockIsCutToTheSample) {
    AudioFifo fifo(AV_SAMPLE_FMT_FLTP, 44100, 2, 0);
    fifo.write(block(100, 0), 30, 50);
    Frame frame;
    ASSERT_TRUE(fifo.read(frame));
    EXPECT_EQ(frame.samples(), 50);
    EXPECT_EQ(sample(frame, 0, 0), 30.0f);
    EXPECT_EQ(sample(frame, 1, 49), -79.0f);
}

TEST(AudioFifoTest, ABlockOfAnotherFormatIsRefused) {
    AudioFifo fifo(AV_SAMPLE_FMT_S16, 44100, 2, 1024);
    EXPECT_THAT([&] { fifo.write(block(10, 0)); },
                FailedWith<MediaError>("Can not buffer audio: Invalid argument"));
}
