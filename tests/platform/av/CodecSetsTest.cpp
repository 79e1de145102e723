#include "platform/av/CodecSets.h"

#include <gtest/gtest.h>

TEST(CodecSetsTest, TheLibrariesReadManyFormats) {
    const auto set = Velmor::AV::findDecoding();
    EXPECT_GT(set.demuxers, 10);
    EXPECT_GT(set.decoders, 10);
}

TEST(CodecSetsTest, FindsTheEditorsEncodersByTheirPresetNames) {
    const auto encoders = Velmor::AV::findEncoders();
    EXPECT_EQ(encoders.at("CODEC_ID_H264"), "libx264");
    EXPECT_EQ(encoders.at("CODEC_ID_HEVC"), "libx265");
    EXPECT_EQ(encoders.at("CODEC_ID_AAC"), "aac");
    EXPECT_EQ(encoders.at("CODEC_ID_PNG"), "png");
    EXPECT_EQ(encoders.at("CODEC_ID_MJPEG"), "mjpeg");
}
