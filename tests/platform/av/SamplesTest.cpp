#include "platform/av/Samples.h"

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

// `channels` channels of `format` (fltp or flt), each sample its index plus 1000 times its
// channel.
Frame block(AVSampleFormat format, int channels, int samples) {
    Frame frame;
    frame->format = format;
    frame->sample_rate = 48000;
    av_channel_layout_default(&frame->ch_layout, channels);
    frame->nb_samples = samples;
    EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    for (int channel = 0; channel < channels; ++channel) {
        for (int index = 0; index < samples; ++index) {
            const float value = static_cast<float>(index + 1000 * channel);
            if (format == AV_SAMPLE_FMT_FLTP)
                reinterpret_cast<float*>(frame->extended_data[channel])[index] = value;
            else
                reinterpret_cast<float*>(frame->data[0])[index * channels + channel] = value;
        }
    }
    frame.setTimestamp(500);
    return frame;
}

float sample(const Frame& frame, int channel, int index) {
    if (frame.format() == AV_SAMPLE_FMT_FLTP)
        return reinterpret_cast<const float*>(frame->extended_data[channel])[index];
    return reinterpret_cast<const float*>(
        frame->data[0])[index * frame->ch_layout.nb_channels + channel];
}

} // namespace

TEST(SamplesTest, ASliceOfPlanarSamplesShowsThemWithoutACopy) {
    const Frame whole = block(AV_SAMPLE_FMT_FLTP, 2, 100);
    const Frame slice = sliceSamples(whole, 30, 50);
    EXPECT_EQ(slice.samples(), 50);
    EXPECT_EQ(sample(slice, 0, 0), 30.0f);
    EXPECT_EQ(sample(slice, 1, 49), 1079.0f);
    EXPECT_EQ(slice->extended_data[1], whole->extended_data[1] + 30 * sizeof(float));
    EXPECT_EQ(slice.timestamp(), 500);
}

TEST(SamplesTest, ASliceOfPackedSamplesSkipsWholeSampleFrames) {
    const Frame slice = sliceSamples(block(AV_SAMPLE_FMT_FLT, 2, 100), 10, 5);
    EXPECT_EQ(slice.samples(), 5);
    EXPECT_EQ(sample(slice, 0, 0), 10.0f);
    EXPECT_EQ(sample(slice, 1, 4), 1014.0f);
}

TEST(SamplesTest, ASliceOfMoreThanEightPlanesMovesEveryPlane) {
    const Frame slice = sliceSamples(block(AV_SAMPLE_FMT_FLTP, 10, 20), 3, 4);
    EXPECT_EQ(sample(slice, 9, 0), 9003.0f);
    EXPECT_EQ(sample(slice, 7, 3), 7006.0f);
    EXPECT_EQ(slice->data[7], slice->extended_data[7]);
}

TEST(SamplesTest, TheSliceOutlivesTheBlockItShows) {
    Frame slice;
    {
        const Frame whole = block(AV_SAMPLE_FMT_FLTP, 2, 10);
        slice = sliceSamples(whole, 2, 2);
    }
    EXPECT_EQ(sample(slice, 1, 1), 1003.0f);
}

TEST(SamplesTest, ASliceOutsideTheBlockFails) {
    const Frame whole = block(AV_SAMPLE_FMT_FLTP, 2, 10);
    EXPECT_THAT([&] { sliceSamples(whole, 8, 3); },
                FailedWith<std::out_of_range>("Samples 8+3 are outside a block of 10"));
    EXPECT_THAT([&] { sliceSamples(whole, -1, 1); },
                FailedWith<std::out_of_range>("Samples -1+1 are outside a block of 10"));
}
