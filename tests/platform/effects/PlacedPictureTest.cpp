#include "platform/effects/PlacedPicture.h"
#include "tests/platform/effects/Pictures.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using namespace Effects;

namespace {

// A 4x4 overlay of luma 200, its alpha 255 on the left half and 0 on the right.
PlacedPicture halfOpaque(int x, int y) {
    PlacedPicture placed{Velmor::AV::Frame::picture(4, 4, overlayFormat()), x, y};
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            setSample(placed.picture, 0, column, row, 200);
            setSample(placed.picture, 3, column, row, column < 2 ? 255 : 0);
        }
    }
    for (int plane = 1; plane < 3; ++plane)
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 2; ++column)
                setSample(placed.picture, plane, column, row, 180);
    return placed;
}

TEST(PlacedPictureTest, OpaquePixelsReplaceAndTransparentOnesLeave) {
    auto target = uniformPicture(8, 8, 50);
    blendOver(target, halfOpaque(2, 2), 1);
    EXPECT_EQ(sampleAt(target, 0, 2, 2), 200);
    EXPECT_EQ(sampleAt(target, 0, 3, 5), 200);
    EXPECT_EQ(sampleAt(target, 0, 4, 2), 50);
    EXPECT_EQ(sampleAt(target, 0, 1, 2), 50);
    EXPECT_EQ(sampleAt(target, 1, 1, 1), 180);
    EXPECT_EQ(sampleAt(target, 1, 2, 1), 128);
}

TEST(PlacedPictureTest, OpacityScalesTheAlpha) {
    auto target = uniformPicture(8, 8, 50);
    blendOver(target, halfOpaque(0, 0), 0.5);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 125);
    blendOver(target, halfOpaque(0, 0), 0);
    EXPECT_EQ(sampleAt(target, 0, 0, 0), 125);
}

TEST(PlacedPictureTest, WhatLiesOutsideTheTargetIsCut) {
    auto target = uniformPicture(8, 8, 50);
    blendOver(target, halfOpaque(-2, 6), 1);
    EXPECT_EQ(sampleAt(target, 0, 0, 6), 50);
    blendOver(target, halfOpaque(6, -2), 1);
    EXPECT_EQ(sampleAt(target, 0, 6, 0), 200);
    EXPECT_EQ(sampleAt(target, 0, 7, 1), 200);
}

TEST(PlacedPictureTest, AnOddPlaceIsRefused) {
    auto target = uniformPicture(8, 8, 50);
    EXPECT_THAT([&] { blendOver(target, halfOpaque(1, 2), 1); },
                FailedWith<std::invalid_argument>("An overlay needs an even place, not 1,2"));
}

} // namespace
