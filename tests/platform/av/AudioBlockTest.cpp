#include "platform/av/AudioBlock.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/dict.h>
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

using EditorService::Testing::FailedWith;
using namespace Velmor::AV;

namespace {

TEST(AudioBlockTest, ASilentBlockIsPlanarFloatInTheDefaultLayout) {
    const Frame block = silentBlock(44100, 2, 300);
    EXPECT_EQ(block.format(), AV_SAMPLE_FMT_FLTP);
    EXPECT_EQ(block.format(), planarFloat());
    EXPECT_EQ(block.samples(), 300);
    EXPECT_EQ(block->sample_rate, 44100);
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    EXPECT_EQ(av_channel_layout_compare(&block->ch_layout, &stereo), 0);
    EXPECT_EQ(shapeOf(block), (AudioShape{AV_SAMPLE_FMT_FLTP, 44100, 2}));
    for (int channel = 0; channel < 2; ++channel)
        for (int index = 0; index < 300; ++index)
            EXPECT_EQ(channelOf(block, channel)[index], 0.0f);
}

TEST(AudioBlockTest, ChannelsAreWrittenInPlace) {
    Frame block = silentBlock(48000, 2, 4);
    channelOf(block, 1)[3] = 0.5f;
    EXPECT_EQ(block->extended_data[1][0], 0);
    EXPECT_EQ(reinterpret_cast<const float*>(block->extended_data[1])[3], 0.5f);
    const Frame& same = block;
    EXPECT_EQ(channelOf(same, 1)[3], 0.5f);
}

TEST(AudioBlockTest, AnEmptyBlockHasNoSamples) {
    const Frame block = silentBlock(48000, 2, 0);
    EXPECT_EQ(block.samples(), 0);
    EXPECT_EQ(shapeOf(block).channels, 2);
}

TEST(AudioBlockTest, OnlyPlanarFloatChannelsAreGiven) {
    Frame packed;
    packed->format = AV_SAMPLE_FMT_S16;
    av_channel_layout_default(&packed->ch_layout, 2);
    EXPECT_THAT([&] { channelOf(packed, 0); },
                FailedWith<std::invalid_argument>("Samples of s16 are not planar float"));
    Frame block = silentBlock(48000, 2, 4);
    EXPECT_THAT([&] { channelOf(block, 2); },
                FailedWith<std::out_of_range>("A block of 2 channels has no channel 2"));
}

TEST(AudioBlockTest, SampleFormatsAreNamedAsFfmpegNamesThem) {
    EXPECT_EQ(sampleFormat("fltp"), AV_SAMPLE_FMT_FLTP);
    EXPECT_EQ(sampleFormat("s16"), AV_SAMPLE_FMT_S16);
    EXPECT_THAT([] { sampleFormat("float"); },
                FailedWith<std::invalid_argument>("No sample format named \"float\""));
}

TEST(AudioBlockTest, SamplesAreAddedFromAnOffset) {
    Frame into = silentBlock(48000, 2, 6);
    Frame from = silentBlock(48000, 2, 2);
    std::fill_n(channelOf(into, 1), 6, 0.25f);
    channelOf(from, 1)[0] = 0.5f;
    channelOf(from, 1)[1] = -0.25f;
    addSamples(into, from, 3);
    EXPECT_EQ(channelOf(into, 1)[2], 0.25f);
    EXPECT_EQ(channelOf(into, 1)[3], 0.75f);
    EXPECT_EQ(channelOf(into, 1)[4], 0.0f);
    EXPECT_EQ(channelOf(into, 1)[5], 0.25f);
    EXPECT_EQ(channelOf(into, 0)[3], 0.0f);
    EXPECT_THAT([&] { addSamples(into, from, 5); },
                FailedWith<std::out_of_range>("Samples 5 to 7 are not in a block of 6"));
}

TEST(AudioBlockTest, MetadataIsReadByKey) {
    Frame frame;
    av_dict_set(&frame->metadata, "lavfi.r128.I", "-23.0", 0);
    EXPECT_EQ(metadataOf(frame, "lavfi.r128.I"), "-23.0");
    EXPECT_EQ(metadataOf(frame, "lavfi.r128.M"), "");
}

} // namespace
