#include "platform/effects/TitleRenderer.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using namespace Effects;
using Velmor::AV::Size;

namespace {

int highestAlpha(const PlacedPicture& placed) {
    int highest = 0;
    const auto alpha = Velmor::AV::planeOf(placed.picture, 3);
    for (int y = 0; y < alpha.height; ++y)
        for (int x = 0; x < alpha.width; ++x)
            highest = std::max<int>(highest, alpha.row(y)[x]);
    return highest;
}

TEST(TitleRendererTest, LinesAreSplitAtLineFeeds) {
    EXPECT_EQ(titleLines("a\nbc\n"), (std::vector<std::string>{"a", "bc", ""}));
    EXPECT_EQ(titleLines(""), (std::vector<std::string>{""}));
}

TEST(TitleRendererTest, ABottomCentreTitleStandsCentredAboveTheMargin) {
    const PlacedPicture placed = renderTitle("Summer", TitleStyle{}, Size{320, 180});
    ASSERT_FALSE(placed.isEmpty());
    const double centre = placed.x + placed.picture.width() / 2.0;
    EXPECT_NEAR(centre, 160, 2);
    EXPECT_LE(placed.y + placed.picture.height(), 180 - 9);
    EXPECT_GT(placed.y, 180 / 2);
    // A twelfth of the height: glyphs of about 15 pixels.
    EXPECT_GT(placed.picture.height(), 8);
    EXPECT_LT(placed.picture.height(), 22);
    EXPECT_EQ(highestAlpha(placed), 255);
}

TEST(TitleRendererTest, TheColourIsTheStyles) {
    TitleStyle style;
    style.colour = Colour{255, 0, 0};
    style.size = 40;
    const PlacedPicture placed = renderTitle("H", style, Size{200, 100});
    const auto alpha = Velmor::AV::planeOf(placed.picture, 3);
    int reds = 0;
    for (int y = 0; y < alpha.height; y += 2)
        for (int x = 0; x < alpha.width; x += 2)
            if (alpha.row(y)[x] == 255 && alpha.row(y + 1)[x] == 255 && alpha.row(y)[x + 1] == 255
                && alpha.row(y + 1)[x + 1] == 255) {
                EXPECT_NEAR(sampleAt(placed.picture, 2, x / 2, y / 2), 240, 2);
                ++reds;
            }
    EXPECT_GT(reds, 5);
}

TEST(TitleRendererTest, ATranslucentColourKeepsItsAlphaOnce) {
    TitleStyle style;
    style.colour = Colour{255, 255, 255, 128};
    const PlacedPicture placed = renderTitle("Summer", style, Size{320, 180});
    EXPECT_NEAR(highestAlpha(placed), 128, 2);
}

TEST(TitleRendererTest, ABackgroundBoxIsOpaqueBehindTheText) {
    TitleStyle style;
    style.background = Colour{0, 0, 255, 255};
    style.position = Position::TopLeft;
    const PlacedPicture placed = renderTitle("ab", style, Size{320, 180});
    EXPECT_LE(placed.x, 9);
    EXPECT_LE(placed.y, 9);
    EXPECT_EQ(sampleAt(placed.picture, 3, 0, 0), 255);
    EXPECT_NEAR(sampleAt(placed.picture, 1, 0, 0), 240, 2);
}

TEST(TitleRendererTest, MoreLinesStandTaller) {
    const PlacedPicture one = renderTitle("Summer", TitleStyle{}, Size{320, 180});
    const PlacedPicture two = renderTitle("Summer\n2026", TitleStyle{}, Size{320, 180});
    EXPECT_GT(two.picture.height(), one.picture.height() * 3 / 2);
    EXPECT_EQ(two.y + two.picture.height(), one.y + one.picture.height());
}

TEST(TitleRendererTest, EmptyLinesShowNothing) {
    EXPECT_TRUE(renderTitle("\n", TitleStyle{}, Size{320, 180}).isEmpty());
}

TEST(TitleRendererTest, RightAlignedLinesEndAtTheMargin) {
    TitleStyle style;
    style.position = Position::CenterRight;
    const PlacedPicture placed = renderTitle("a\nlonger line", style, Size{320, 180});
    EXPECT_NEAR(placed.x + placed.picture.width(), 320 - 9, 3);
    EXPECT_NEAR(placed.y + placed.picture.height() / 2.0, 90, 4);
}

} // namespace
