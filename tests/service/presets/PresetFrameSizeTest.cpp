#include "service/requests/PresetFrameSize.h"

#include <gtest/gtest.h>

namespace {

TEST(PresetFrameSizeTest, SizeThatNobodySetIsTheOriginalSize) {
    const PresetFrameSize size;
    EXPECT_EQ(PresetFrameSize::ORIGINAL, -1);
    EXPECT_EQ(size.width, PresetFrameSize::ORIGINAL);
    EXPECT_EQ(size.height, PresetFrameSize::ORIGINAL);
    EXPECT_TRUE(size.isOriginal());
}

TEST(PresetFrameSizeTest, OneSideAtOriginalIsNotTheOriginalSize) {
    EXPECT_FALSE(PresetFrameSize(-1, 1080).isOriginal());
    EXPECT_FALSE(PresetFrameSize(1920, -1).isOriginal());
}

TEST(PresetFrameSizeTest, ZeroIsEvenAndOriginalIsNot) {
    EXPECT_TRUE(PresetFrameSize(0, 0).isEven());
    EXPECT_TRUE(PresetFrameSize(1920, 1080).isEven());
    EXPECT_FALSE(PresetFrameSize(1921, 1080).isEven());
    EXPECT_FALSE(PresetFrameSize(1920, 1081).isEven());
    EXPECT_FALSE(PresetFrameSize().isEven());
    EXPECT_TRUE(PresetFrameSize(-2, -4).isEven());
}

TEST(PresetFrameSizeTest, EqualityComparesBothSides) {
    EXPECT_EQ(PresetFrameSize(1920, 1080), PresetFrameSize(1920, 1080));
    EXPECT_NE(PresetFrameSize(1920, 1080), PresetFrameSize(1080, 1920));
    EXPECT_NE(PresetFrameSize(1920, 1080), PresetFrameSize(1920, 720));
    EXPECT_EQ(PresetFrameSize(), PresetFrameSize(-1, -1));
}

TEST(PresetFrameSizeTest, AssignmentsCopyBothSides) {
    const PresetFrameSize source(1280, 720);
    PresetFrameSize copied;
    copied = source;
    EXPECT_EQ(copied, source);
    PresetFrameSize moved;
    moved = PresetFrameSize(640, 360);
    EXPECT_EQ(moved, PresetFrameSize(640, 360));
    copied = PresetFrameSize();
    EXPECT_TRUE(copied.isOriginal());
}

TEST(PresetFrameSizeTest, OriginalIsSpelledInLowerCase) {
    EXPECT_EQ(PresetFrameSize::originalSizeString(), QStringLiteral("original"));
}

} // namespace
