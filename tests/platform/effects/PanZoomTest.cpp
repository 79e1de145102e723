#include "platform/effects/PanZoom.h"
#include "tests/platform/effects/Pictures.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

using namespace EditorService::Testing;
using namespace Effects;

namespace {

// A bright soft vertical line at column 100 of a 200x20 picture.
Velmor::AV::Frame softLine() {
    auto picture = uniformPicture(200, 20, 16);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 200; ++x)
            setSample(picture, 0, x, y,
                      static_cast<std::uint8_t>(
                          16 + std::lround(200 * std::exp(-(x - 100) * (x - 100) / 18.0))));
    return picture;
}

double centroidOfRow(const Velmor::AV::Frame& picture, int y) {
    double sum = 0;
    double weighted = 0;
    for (int x = 0; x < picture.width(); ++x) {
        const double value = sampleAt(picture, 0, x, y) - 16.0;
        sum += value;
        weighted += value * x;
    }
    return weighted / sum;
}

TEST(PanZoomTest, TheFilledRegionNarrowsTheRectangleToTheTargetsShape) {
    const NormalisedRect region = filledRegion(
        NormalisedRect{0, 0, 1, 1}, Velmor::AV::Size{400, 300}, Velmor::AV::Size{160, 90});
    EXPECT_DOUBLE_EQ(region.x, 0);
    EXPECT_DOUBLE_EQ(region.width, 1);
    EXPECT_NEAR(region.y, 0.125, 1e-12);
    EXPECT_NEAR(region.height, 0.75, 1e-12);
    const NormalisedRect tall = filledRegion(
        NormalisedRect{0.5, 0, 0.5, 1}, Velmor::AV::Size{100, 100}, Velmor::AV::Size{100, 100});
    EXPECT_DOUBLE_EQ(tall.x, 0.5);
    EXPECT_NEAR(tall.y, 0.25, 1e-12);
    EXPECT_NEAR(tall.height, 0.5, 1e-12);
}

TEST(PanZoomTest, TheWholePictureAtItsOwnSizeIsCopied) {
    const auto source = decodedPicture(mediaFixture("h264_aac.mp4"), 3);
    auto target = uniformPicture(source.width(), source.height(), 0);
    PanZoomPainter().paint(source, NormalisedRect{0, 0, 1, 1}, target);
    for (int plane = 0; plane < 3; ++plane) {
        const auto in = Velmor::AV::planeOf(source, plane);
        for (int y = 0; y < in.height; ++y)
            for (int x = 0; x < in.width; ++x)
                ASSERT_EQ(sampleAt(target, plane, x, y), in.row(y)[x])
                    << plane << " " << x << "," << y;
    }
}

// A pan of a fifth of a pixel a frame moves the picture a fifth of a pixel each frame: no frame
// snaps to a whole pixel.
TEST(PanZoomTest, APanMovesByFractionsOfAPixel) {
    const auto source = softLine();
    PanZoomPainter painter;
    auto target = uniformPicture(100, 20, 0);
    for (int step = 0; step <= 10; ++step) {
        painter.paint(source, NormalisedRect{0.25 + 0.001 * step, 0, 0.5, 1}, target);
        EXPECT_NEAR(centroidOfRow(target, 10), 50 - 0.2 * step, 0.02) << step;
    }
}

TEST(PanZoomTest, AZoomScalesAboutTheRectangle) {
    const auto source = softLine();
    auto target = uniformPicture(200, 20, 0);
    // Half the width, from x 50: the line at source 100 shows at target 100, twice as wide.
    PanZoomPainter().paint(source, NormalisedRect{0.25, 0.25, 0.5, 0.5}, target);
    EXPECT_NEAR(centroidOfRow(target, 10), 100.5, 0.05);
}

TEST(PanZoomTest, ShrinkingDoesNotAlias) {
    auto checkerboard = uniformPicture(64, 64, 16);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            setSample(checkerboard, 0, x, y, (x + y) % 2 ? 235 : 16);
    auto target = uniformPicture(16, 16, 0);
    PanZoomPainter().paint(checkerboard, NormalisedRect{0, 0, 1, 1}, target);
    // The edges repeat the last samples, which tips the border's pixels a little.
    for (int y = 1; y < 15; ++y)
        for (int x = 1; x < 15; ++x)
            ASSERT_NEAR(sampleAt(target, 0, x, y), 126, 3) << x << "," << y;
}

TEST(PanZoomTest, OtherFormatsAreConvertedFirst) {
    auto white = Velmor::AV::Frame::picture(8, 8, AV_PIX_FMT_RGB24);
    for (int y = 0; y < 8; ++y)
        std::fill_n(white->data[0] + y * white->linesize[0], 24, 255);
    auto target = uniformPicture(4, 4, 0);
    PanZoomPainter().paint(white, NormalisedRect{0, 0, 1, 1}, target);
    EXPECT_EQ(sampleAt(target, 0, 1, 1), 235);
}

TEST(PanZoomTest, AnEmptyRectangleIsRefused) {
    const auto source = uniformPicture(8, 8, 0);
    auto target = uniformPicture(8, 8, 0);
    EXPECT_THAT(
        [&] {
            PanZoomPainter().paint(source, NormalisedRect{0, 0, 0, 1}, target);
        },
        FailedWith<std::invalid_argument>(
            "Pan and zoom needs a rectangle of some width and height"));
}

TEST(PanZoomTest, ThePathEasesBetweenItsEnds) {
    const PanZoomPath path{NormalisedRect{0, 0, 1, 1}, NormalisedRect{0.5, 0.5, 0.5, 0.5},
                           Easing::EaseIn};
    EXPECT_EQ(path.at(0), (NormalisedRect{0, 0, 1, 1}));
    EXPECT_EQ(path.at(1), (NormalisedRect{0.5, 0.5, 0.5, 0.5}));
    EXPECT_DOUBLE_EQ(path.at(0.5).x, 0.0625);
}

} // namespace
