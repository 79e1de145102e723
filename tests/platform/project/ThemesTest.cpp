#include "platform/project/Themes.h"

#include <gtest/gtest.h>

using namespace Project;

namespace {

const ThemeDefaults theme{"T", nlohmann::json{{"type", "fade"}},
                          nlohmann::json{{"size", 40}, {"color", "#ff0000"}}};

TEST(ThemesTest, TheTransitionGoesToEveryClipButTheFirst) {
    auto document = nlohmann::json::parse(
        R"({"tracks": [{"type": "video", "clips": [{}, {}, {"transition": null}, {"transition": {"type": "dissolve"}}]}]})");
    applyTheme(document, theme);
    const auto& clips = document["tracks"][0]["clips"];
    EXPECT_FALSE(clips[0].contains("transition"));
    EXPECT_EQ(clips[1]["transition"]["type"], "fade");
    EXPECT_TRUE(clips[2]["transition"].is_null());
    EXPECT_EQ(clips[3]["transition"]["type"], "dissolve");
}

TEST(ThemesTest, TheTitleStyleFillsTheKeysATitleLacks) {
    auto document = nlohmann::json::parse(
        R"({"tracks": [{"type": "overlay", "clips": [{"text": "a"}, {"text": "b", "style": {"size": 10}}, {"source": "x.png"}]}]})");
    applyTheme(document, theme);
    const auto& clips = document["tracks"][0]["clips"];
    EXPECT_EQ(clips[0]["style"], (nlohmann::json{{"size", 40}, {"color", "#ff0000"}}));
    EXPECT_EQ(clips[1]["style"], (nlohmann::json{{"size", 10}, {"color", "#ff0000"}}));
    EXPECT_FALSE(clips[2].contains("style"));
}

TEST(ThemesTest, PartsOfTheWrongTypeAreLeftForReadingToReport) {
    auto document = nlohmann::json::parse(
        R"({"tracks": [{"type": "video", "clips": {}}, 3, {"type": "overlay", "clips": [{"text": "a", "style": 5}]}]})");
    const auto before = document;
    applyTheme(document, theme);
    EXPECT_EQ(document, before);
}

} // namespace
