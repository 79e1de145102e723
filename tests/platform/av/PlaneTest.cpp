#include "platform/av/Plane.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

using EditorService::Testing::FailedWith;
using namespace Velmor::AV;

namespace {

TEST(PlaneTest, ChromaPlanesOfAnOddPictureRoundUp) {
    Frame picture = Frame::picture(5, 3, AV_PIX_FMT_YUV420P);
    const ConstPlane luma = planeOf(static_cast<const Frame&>(picture), 0);
    const ConstPlane chroma = planeOf(static_cast<const Frame&>(picture), 2);
    EXPECT_EQ(luma.width, 5);
    EXPECT_EQ(luma.height, 3);
    EXPECT_EQ(chroma.width, 3);
    EXPECT_EQ(chroma.height, 2);
    EXPECT_EQ(chroma.data, picture->data[2]);
    EXPECT_EQ(chroma.linesize, picture->linesize[2]);
    EXPECT_EQ(planeCount(picture), 3);
}

TEST(PlaneTest, PackedRgbaIsOnePlaneOfFourBytesAPixel) {
    Frame picture = Frame::picture(4, 2, AV_PIX_FMT_RGBA);
    const Plane plane = planeOf(picture, 0);
    EXPECT_EQ(plane.width, 4);
    EXPECT_EQ(plane.bytesPerPixel, 4);
    EXPECT_EQ(planeCount(picture), 1);
}

TEST(PlaneTest, TheAlphaPlaneHasTheFullSize) {
    Frame picture = Frame::picture(6, 4, AV_PIX_FMT_YUVA420P);
    const Plane alpha = planeOf(picture, 3);
    EXPECT_EQ(alpha.width, 6);
    EXPECT_EQ(alpha.height, 4);
    EXPECT_EQ(planeCount(picture), 4);
}

TEST(PlaneTest, WritingThroughAPlaneChangesThePicture) {
    Frame picture = Frame::picture(4, 4, AV_PIX_FMT_GRAY8);
    const Plane plane = planeOf(picture, 0);
    plane.row(2)[3] = 200;
    EXPECT_EQ(picture->data[0][2 * picture->linesize[0] + 3], 200);
}

TEST(PlaneTest, APlaneTheFormatLacksIsRefused) {
    Frame picture = Frame::picture(4, 4, AV_PIX_FMT_YUV420P);
    EXPECT_THAT([&] { planeOf(picture, 3); },
                FailedWith<std::out_of_range>("A yuv420p picture has no plane 3"));
}

TEST(PlaneTest, SamplesWiderThanAByteAreRefused) {
    Frame picture = Frame::picture(4, 4, AV_PIX_FMT_YUV420P10LE);
    EXPECT_THAT([&] { planeOf(picture, 0); },
                FailedWith<std::invalid_argument>(
                    "Can not paint the pixels of a yuv420p10le picture by hand"));
}

} // namespace
