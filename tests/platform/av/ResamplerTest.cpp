#include "platform/av/Resampler.h"

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

Frame block(int samples, int rate, std::int64_t timestamp) {
    Frame frame;
    frame->format = AV_SAMPLE_FMT_S16;
    frame->sample_rate = rate;
    av_channel_layout_default(&frame->ch_layout, 1);
    frame->nb_samples = samples;
    EXPECT_GE(av_frame_get_buffer(frame.get(), 0), 0);
    auto* data = reinterpret_cast<std::int16_t*>(frame->data[0]);
    for (int index = 0; index < samples; ++index)
        data[index] = static_cast<std::int16_t>((index % 100) * 100);
    frame.setTimestamp(timestamp);
    return frame;
}

} // namespace

TEST(ResamplerTest, ConvertsFormatAndChannelsKeepingTheSamplesAndTimestamp) {
    Resampler resampler(AV_SAMPLE_FMT_FLTP, 44100, 2);
    const Frame out = resampler.convert(block(1000, 44100, 4410), {1, 44100});
    EXPECT_EQ(out.format(), AV_SAMPLE_FMT_FLTP);
    EXPECT_EQ(out->ch_layout.nb_channels, 2);
    EXPECT_EQ(out->sample_rate, 44100);
    EXPECT_EQ(out.samples(), 1000);
    EXPECT_EQ(out.timestamp(), 4410);
}

TEST(ResamplerTest, ChangesTheRateWithTheTimestampInTheNewRate) {
    Resampler resampler(AV_SAMPLE_FMT_FLTP, 48000, 1);
    std::int64_t samples = 0;
    for (int index = 0; index < 10; ++index) {
        const Frame out = resampler.convert(block(4410, 44100, index * 4410), {1, 44100});
        if (index == 0) {
            EXPECT_LE(out.timestamp(), 0);
        }
        samples += out.samples();
    }
    samples += resampler.drain().samples();
    EXPECT_NEAR(static_cast<double>(samples), 48000, 48);
}

TEST(ResamplerTest, DrainingBeforeAnyInputGivesNoSamples) {
    Resampler resampler(AV_SAMPLE_FMT_FLTP, 48000, 2);
    EXPECT_EQ(resampler.drain().samples(), 0);
}

TEST(ResamplerTest, ImpossibleSettingsFailNamingTheRate) {
    EXPECT_THAT([&] { Resampler(AV_SAMPLE_FMT_FLTP, 0, 2); },
                FailedWith<MediaError>("Can not resample to 0 Hz: Invalid argument"));
}
