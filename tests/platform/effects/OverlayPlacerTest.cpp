#include "platform/effects/OverlayPlacer.h"
#include "tests/platform/effects/Pictures.h"
#include "tests/support/MediaFixtures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using namespace Effects;
using Velmor::AV::Rect;
using Velmor::AV::Size;

namespace {

TEST(OverlayPlacerTest, APictureOfTheRectanglesShapeFillsIt) {
    EXPECT_EQ(fittedPlace(Size{100, 50}, NormalisedRect{0.5, 0, 0.5, 0.5}, Size{200, 100}),
              (Rect{100, 0, 100, 50}));
}

TEST(OverlayPlacerTest, AnotherShapeIsFittedAndCentred) {
    // A square into a 40x20 rectangle at 20,10: 20x20 in its middle.
    EXPECT_EQ(fittedPlace(Size{64, 64}, NormalisedRect{0.1, 0.1, 0.2, 0.2}, Size{200, 100}),
              (Rect{30, 10, 20, 20}));
}

TEST(OverlayPlacerTest, CornersLandOnEvenPixels) {
    const Rect place =
        fittedPlace(Size{64, 48}, NormalisedRect{0.853, 0.051, 0.1, 0.1}, Size{1280, 720});
    EXPECT_EQ(place.x % 2, 0);
    EXPECT_EQ(place.y % 2, 0);
    EXPECT_EQ(place.height, 72);
}

TEST(OverlayPlacerTest, AnImagesAlphaIsKept) {
    Velmor::AV::Demuxer demuxer(mediaFixture("logo_alpha.png"));
    Velmor::AV::Decoder decoder(demuxer, 0, 1);
    Velmor::AV::Frame logo;
    ASSERT_TRUE(decoder.decodeNext(demuxer, logo));
    OverlayPlacer placer;
    const PlacedPicture placed = placer.place(logo, NormalisedRect{0, 0, 0.5, 1}, Size{80, 20});
    EXPECT_EQ(placed.picture.width(), 40);
    EXPECT_EQ(placed.picture.height(), 20);
    // The logo is opaque red on its left half and transparent on its right.
    EXPECT_EQ(sampleAt(placed.picture, 3, 5, 10), 255);
    EXPECT_EQ(sampleAt(placed.picture, 3, 35, 10), 0);
    EXPECT_NEAR(sampleAt(placed.picture, 2, 2, 5), 240, 2);
}

TEST(OverlayPlacerTest, APictureWithoutAlphaIsOpaque) {
    const auto picture = uniformPicture(16, 16, 100);
    const PlacedPicture placed =
        OverlayPlacer().place(picture, NormalisedRect{0, 0, 1, 1}, Size{8, 8});
    EXPECT_EQ(sampleAt(placed.picture, 3, 3, 3), 255);
    EXPECT_EQ(sampleAt(placed.picture, 0, 3, 3), 100);
}

} // namespace
