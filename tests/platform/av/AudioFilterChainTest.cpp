#include "platform/av/AudioFilterChain.h"
#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/samplefmt.h>
}

using EditorService::Testing::FailedWith;
using namespace Velmor::AV;

namespace {

const AudioShape stereo{AV_SAMPLE_FMT_FLTP, 48000, 2};

Frame level(float value, int samples, std::int64_t at) {
    Frame block = silentBlock(48000, 2, samples);
    for (int channel = 0; channel < 2; ++channel)
        std::fill_n(channelOf(block, channel), samples, value);
    block.setTimestamp(at);
    return block;
}

TEST(AudioFilterChainTest, AVolumeGivesEachBlockBackAtOnceAtItsTime) {
    AudioFilterChain chain(stereo, {{"volume", {{"volume", "-6.0206dB"}}}}, stereo);
    const Frame input = level(0.8f, 100, 4800);
    chain.push(input);
    Frame output;
    ASSERT_TRUE(chain.pull(output));
    EXPECT_EQ(output.timestamp(), 4800);
    EXPECT_EQ(output.samples(), 100);
    EXPECT_EQ(shapeOf(output), stereo);
    EXPECT_NEAR(channelOf(output, 1)[50], 0.4f, 1e-6);
    EXPECT_EQ(channelOf(input, 1)[50], 0.8f);
    EXPECT_FALSE(chain.pull(output));
}

TEST(AudioFilterChainTest, AFadeWeighsSamplesByTheirTime) {
    AudioFilterChain chain(
        stereo, {{"afade", {{"type", "in"}, {"start_sample", "1000"}, {"nb_samples", "8"}}}},
        stereo);
    chain.push(level(1, 16, 996));
    Frame output;
    ASSERT_TRUE(chain.pull(output));
    const float* left = channelOf(output, 0);
    EXPECT_EQ(left[3], 0.0f);
    EXPECT_EQ(left[4], 0.0f);
    EXPECT_EQ(left[5], 0.125f);
    EXPECT_EQ(left[8], 0.5f);
    EXPECT_EQ(left[12], 1.0f);
}

TEST(AudioFilterChainTest, AResamplerGivesItsRestAtTheClose) {
    AudioFilterChain chain(stereo, {{"aresample", {{"osr", "96000"}}}},
                           {AV_SAMPLE_FMT_FLTP, 96000, 2});
    int samples = 0;
    Frame output;
    for (int block = 0; block < 10; ++block) {
        chain.push(level(0.5f, 480, block * 480));
        while (chain.pull(output)) {
            EXPECT_EQ(output->sample_rate, 96000);
            samples += output.samples();
        }
    }
    chain.close();
    while (chain.pull(output))
        samples += output.samples();
    EXPECT_EQ(samples, 9600);
    EXPECT_FALSE(chain.pull(output));
}

TEST(AudioFilterChainTest, TheOutputsShapeIsConvertedTo) {
    AudioFilterChain chain(stereo, {}, {AV_SAMPLE_FMT_S16, 48000, 1});
    chain.push(level(0.5f, 10, 0));
    Frame output;
    ASSERT_TRUE(chain.pull(output));
    EXPECT_EQ(output.format(), AV_SAMPLE_FMT_S16);
    EXPECT_EQ(output->ch_layout.nb_channels, 1);
}

TEST(AudioFilterChainTest, MeasurementsComeAsMetadata) {
    AudioFilterChain chain(stereo, {{"ebur128", {{"metadata", "1"}}}}, {});
    Frame output;
    std::string loudness;
    for (int block = 0; block < 10; ++block) {
        chain.push(level(0.5f, 4800, block * 4800));
        while (chain.pull(output))
            loudness = metadataOf(output, "lavfi.r128.I");
    }
    EXPECT_FALSE(loudness.empty());
}

TEST(AudioFilterChainTest, UnknownFiltersAndOptionsAreNamed) {
    EXPECT_THAT(
        [] {
            AudioFilterChain(stereo, {{"nosuch", {}}}, stereo);
        },
        FailedWith<MediaError>("Can not set up the filter nosuch: Filter not found"));
    EXPECT_THAT(
        [] {
            AudioFilterChain(stereo, {{"afade", {{"nosuch", "1"}}}}, stereo);
        },
        FailedWith<MediaError>("Can not set up the filter afade: nosuch: Option not found"));
}

TEST(AudioFilterChainTest, ABlockOfAnotherShapeIsRefused) {
    AudioFilterChain chain(stereo, {}, stereo);
    EXPECT_THAT([&] { chain.push(silentBlock(44100, 2, 10)); },
                FailedWith<std::invalid_argument>("A filter chain for fltp 48000 Hz 2 channels "
                                                  "can not take samples of fltp 44100 Hz 2 "
                                                  "channels"));
}

} // namespace
