#include "platform/av/Upright.h"

#include "platform/av/Frame.h"
#include "platform/av/Picture.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavutil/frame.h>
}

using Velmor::AV::Frame;
using Velmor::AV::pixelFormat;
using Velmor::AV::Rational;
using Velmor::AV::Size;
using Velmor::AV::Upright;

namespace {

// A grey picture with one white pixel in its top left corner.
Frame markedPicture(int width, int height) {
    Frame picture = Frame::picture(width, height, pixelFormat("gray"));
    for (int y = 0; y < height; ++y)
        std::fill_n(picture->data[0] + y * picture->linesize[0], width, 100);
    picture->data[0][0] = 255;
    return picture;
}

// Where the white pixel went: 0 top left, 1 top right, 2 bottom right, 3 bottom left.
int corner(const Frame& picture) {
    const int right = picture.width() - 1;
    const int bottom = picture.height() - 1;
    const auto at = [&](int x, int y) { return picture->data[0][y * picture->linesize[0] + x]; };
    const int corners[][2] = {{0, 0}, {right, 0}, {right, bottom}, {0, bottom}};
    for (int index = 0; index < 4; ++index) {
        if (at(corners[index][0], corners[index][1]) > 200)
            return index;
    }
    return -1;
}

} // namespace

TEST(UprightTest, TurnsTheSizeForAQuarterTurnEitherWay) {
    EXPECT_EQ(Upright::displaySize({160, 90}, 90, {1, 1}), (Size{90, 160}));
    EXPECT_EQ(Upright::displaySize({160, 90}, -90, {1, 1}), (Size{90, 160}));
    EXPECT_EQ(Upright::displaySize({160, 90}, 180, {1, 1}), (Size{160, 90}));
    EXPECT_EQ(Upright::displaySize({160, 90}, 0, {1, 1}), (Size{160, 90}));
}

TEST(UprightTest, StretchesTheWidthByThePixelShapeBeforeTurning) {
    EXPECT_EQ(Upright::displaySize({720, 576}, 0, {64, 45}), (Size{1024, 576}));
    EXPECT_EQ(Upright::displaySize({720, 576}, 0, {16, 15}), (Size{768, 576}));
    EXPECT_EQ(Upright::displaySize({720, 576}, -90, {16, 15}), (Size{576, 768}));
    // An unknown shape is square.
    EXPECT_EQ(Upright::displaySize({720, 576}, 0, {0, 1}), (Size{720, 576}));
}

TEST(UprightTest, LeavesASquareUnturnedPictureAsItIs) {
    Upright upright({8, 4}, pixelFormat("gray"), 0, {1, 1});
    EXPECT_FALSE(upright.changes());
    Frame picture = markedPicture(8, 4);
    picture.setTimestamp(7);
    const Frame same = upright.run(picture);
    EXPECT_EQ(same->data[0], picture->data[0]);
    EXPECT_EQ(same.timestamp(), 7);
}

TEST(UprightTest, TurnsThePictureAsTheDisplayMatrixSays) {
    // Counterclockwise angles, as the display matrix gives them: -90 is a quarter turn clockwise.
    const struct {
        int rotation;
        int corner;
    } turns[] = {{-90, 1}, {180, 2}, {90, 3}, {270, 1}};
    for (const auto& turn : turns) {
        SCOPED_TRACE(turn.rotation);
        Upright upright({8, 4}, pixelFormat("gray"), turn.rotation, {1, 1});
        EXPECT_TRUE(upright.changes());
        Frame picture = markedPicture(8, 4);
        picture.setTimestamp(3);
        const Frame turned = upright.run(picture);
        EXPECT_EQ((Size{turned.width(), turned.height()}), upright.size());
        EXPECT_EQ(corner(turned), turn.corner);
        EXPECT_EQ(turned.timestamp(), 3);
    }
}

TEST(UprightTest, StretchesAnamorphicPicturesToSquarePixels) {
    Upright upright({16, 8}, pixelFormat("gray"), 0, {2, 1});
    const Frame stretched = upright.run(markedPicture(16, 8));
    EXPECT_EQ(stretched.width(), 32);
    EXPECT_EQ(stretched.height(), 8);
}

TEST(UprightTest, MirrorsAsAFlippingDisplayMatrixSays) {
    // The angles are those the matrices read as: a left-right flip reads as -180, an up-down
    // flip as 0, a flip across the main diagonal as -90.
    const struct {
        int rotation;
        Size size;
        int corner;
    } mirrors[] = {{-180, {8, 4}, 1}, {0, {8, 4}, 3}, {-90, {4, 8}, 0}};
    for (const auto& mirror : mirrors) {
        SCOPED_TRACE(mirror.rotation);
        Upright upright({8, 4}, pixelFormat("gray"), mirror.rotation, {1, 1}, true);
        EXPECT_TRUE(upright.changes());
        const Frame shown = upright.run(markedPicture(8, 4));
        EXPECT_EQ((Size{shown.width(), shown.height()}), mirror.size);
        EXPECT_EQ(corner(shown), mirror.corner);
    }
}
