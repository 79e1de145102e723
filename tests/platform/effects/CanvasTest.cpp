#include "platform/effects/Canvas.h"
#include "tests/platform/effects/Pictures.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using namespace Effects;

namespace {

TEST(CanvasTest, ACanvasIsOneColour) {
    const auto picture = canvas(Velmor::AV::Size{6, 4}, YuvColour{81, 90, 240});
    EXPECT_EQ(picture.format(), composingFormat());
    EXPECT_EQ(sampleAt(picture, 0, 5, 3), 81);
    EXPECT_EQ(sampleAt(picture, 1, 2, 1), 90);
    EXPECT_EQ(sampleAt(picture, 2, 0, 0), 240);
}

TEST(CanvasTest, ARectangleIsPaintedWithTheChromaItCovers) {
    auto picture = canvas(Velmor::AV::Size{8, 8}, YuvColour{16, 128, 128});
    fillRect(picture, Velmor::AV::Rect{2, 2, 3, 2}, YuvColour{200, 60, 70});
    EXPECT_EQ(sampleAt(picture, 0, 1, 2), 16);
    EXPECT_EQ(sampleAt(picture, 0, 2, 2), 200);
    EXPECT_EQ(sampleAt(picture, 0, 4, 3), 200);
    EXPECT_EQ(sampleAt(picture, 0, 5, 3), 16);
    EXPECT_EQ(sampleAt(picture, 0, 2, 4), 16);
    EXPECT_EQ(sampleAt(picture, 1, 1, 1), 60);
    EXPECT_EQ(sampleAt(picture, 1, 2, 1), 60);
    EXPECT_EQ(sampleAt(picture, 1, 3, 1), 128);
    fillRect(picture, Velmor::AV::Rect{6, 6, 10, 10}, YuvColour{50, 50, 50});
    EXPECT_EQ(sampleAt(picture, 0, 7, 7), 50);
}

TEST(CanvasTest, OnlyComposingPicturesOfOneSizeAreTaken) {
    const auto small = canvas(Velmor::AV::Size{4, 4}, YuvColour{});
    const auto other = Velmor::AV::Frame::picture(4, 4, overlayFormat());
    EXPECT_NO_THROW(requireComposing("A test", {&small, &small}));
    EXPECT_THAT(
        [&] {
            requireComposing("A test", {&small, &other});
        },
        FailedWith<std::invalid_argument>(
            "A test needs yuv420p pictures of one size, not 4x4 yuv420p, 4x4 yuva420p"));
}

} // namespace
