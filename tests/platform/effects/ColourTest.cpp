#include "platform/effects/Colour.h"

#include <gtest/gtest.h>

using namespace Effects;

namespace {

TEST(ColourTest, SixDigitsAreAnOpaqueColour) {
    EXPECT_EQ(parseColour("#ff8000"), (Colour{255, 128, 0, 255}));
}

TEST(ColourTest, EightDigitsCarryAlphaInEitherCase) {
    EXPECT_EQ(parseColour("#FF800080"), (Colour{255, 128, 0, 128}));
}

TEST(ColourTest, OtherTextsAreNoColour) {
    for (const char* text : {"", "#", "ff8000", "#ff800", "#ff80001", "#gg8000", "red", "#ff8000 "})
        EXPECT_FALSE(parseColour(text)) << text;
}

TEST(ColourTest, TextIsShortWhenOpaque) {
    EXPECT_EQ(colourText(Colour{255, 128, 0, 255}), "#ff8000");
    EXPECT_EQ(colourText(Colour{1, 2, 3, 4}), "#01020304");
}

TEST(ColourTest, BlackAndWhiteAreTheLimitedRangeEnds) {
    EXPECT_EQ(toYuv(Colour{0, 0, 0}).y, 16);
    EXPECT_EQ(toYuv(Colour{255, 255, 255}).y, 235);
    EXPECT_EQ(toYuv(Colour{255, 255, 255}).u, 128);
    EXPECT_EQ(toYuv(Colour{255, 0, 0}).v, 240);
    EXPECT_EQ(toYuv(Colour{0, 0, 255}).u, 240);
}

} // namespace
