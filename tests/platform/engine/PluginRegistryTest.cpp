#include "platform/engine/PluginRegistry.h"

#include <gtest/gtest.h>

using namespace Velmor::Core;

TEST(PluginRegistryTest, KnowsTheFourteenPluginsInLoadOrder) {
    const std::vector<std::string> expected{
        "EffectsIPP", "Effects",         "EffectsFF",  "EffectsOgl",   "DecodersFF",
        "EncodersFF", "EncoderLossless", "EncoderAMF", "EncoderNVENC", "DecoderNVDEC",
        "EncoderIM",  "DecoderMF",       "EncoderMF",  "DecoderRAW"};
    EXPECT_EQ(PluginRegistry::KnownPlugins(), expected);
}

TEST(PluginRegistryTest, IsKnownComparesWholeNamesWithCase) {
    EXPECT_TRUE(PluginRegistry::IsKnown("EffectsFF"));
    EXPECT_FALSE(PluginRegistry::IsKnown("effectsff"));
    EXPECT_FALSE(PluginRegistry::IsKnown("EffectsFF,EffectsOgl"));
    EXPECT_FALSE(PluginRegistry::IsKnown(""));
}

TEST(PluginRegistryTest, TheDecodersPluginFindsTheLibrariesDemuxersAndDecoders) {
    const auto plugin = PluginRegistry::Load("DecodersFF");
    EXPECT_EQ(plugin.name, "DecodersFF");
    EXPECT_TRUE(plugin.encoders.empty());
}

TEST(PluginRegistryTest, TheEncodersPluginFindsTheEditorsEncoders) {
    const auto plugin = PluginRegistry::Load("EncodersFF");
    const std::map<std::string, std::string> expected{{"CODEC_ID_AAC", "aac"},
                                                      {"CODEC_ID_H264", "libx264"},
                                                      {"CODEC_ID_HEVC", "libx265"},
                                                      {"CODEC_ID_MJPEG", "mjpeg"},
                                                      {"CODEC_ID_PNG", "png"}};
    EXPECT_EQ(plugin.encoders, expected);
}

TEST(PluginRegistryTest, TheEffectsPluginFindsTheFiltersOfTitlesAndTheMix) {
    EXPECT_NO_THROW(PluginRegistry::Load("EffectsFF"));
}

TEST(PluginRegistryTest, OtherPluginsGiveNoCodecs) {
    const auto plugin = PluginRegistry::Load("EffectsFF");
    EXPECT_EQ(plugin.name, "EffectsFF");
    EXPECT_TRUE(plugin.encoders.empty());
}
