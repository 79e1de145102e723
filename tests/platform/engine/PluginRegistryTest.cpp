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
