#include "platform/av/Scaler.h"

#include "platform/av/MediaError.h"
#include "platform/av/Picture.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

using EditorService::Testing::FailedWith;
using Velmor::AV::Frame;
using Velmor::AV::MediaError;
using Velmor::AV::Rect;
using Velmor::AV::Scaler;

namespace {

std::uint8_t& pixel(const Frame& picture, int plane, int x, int y) {
    return picture->data[plane][y * picture->linesize[plane] + x];
}

// Every byte of the plane's first `width` bytes in each of its `height` rows.
void fillPlane(const Frame& picture, int plane, int width, int height, std::uint8_t value) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixel(picture, plane, x, y) = value;
}

// A grey picture whose every column holds its own number, so a copy shows which columns it took.
Frame numberedColumns(int width, int height) {
    Frame picture = Frame::picture(width, height, AV_PIX_FMT_GRAY8);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixel(picture, 0, x, y) = static_cast<std::uint8_t>(x);
    return picture;
}

TEST(ScalerTest, WhiteStaysWhiteWhenScaledUp) {
    Frame source = Frame::picture(4, 4, AV_PIX_FMT_RGB24);
    fillPlane(source, 0, 4 * 3, 4, 255);
    Frame target = Frame::picture(8, 6, AV_PIX_FMT_RGB24);

    Scaler().scale(source, target);

    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 8 * 3; ++x)
            ASSERT_EQ(pixel(target, 0, x, y), 255) << x << "," << y;
}

TEST(ScalerTest, SameSizeRegionCopiesItsColumnsAndLeavesTheRestAlone) {
    const Frame source = numberedColumns(40, 10);
    Frame target = Frame::picture(30, 12, AV_PIX_FMT_GRAY8);
    fillPlane(target, 0, 30, 12, 200);

    Scaler().scale(source, Rect{10, 2, 20, 6}, target, Rect{4, 3, 20, 6});

    for (int y = 0; y < 12; ++y) {
        for (int x = 0; x < 30; ++x) {
            const bool inside = x >= 4 && x < 24 && y >= 3 && y < 9;
            ASSERT_EQ(pixel(target, 0, x, y), inside ? x - 4 + 10 : 200) << x << "," << y;
        }
    }
}

TEST(ScalerTest, ScalingLeavesThePixelsLeftAboveAndBelowTheRegionAlone) {
    Frame source = Frame::picture(90, 180, AV_PIX_FMT_GRAY8);
    fillPlane(source, 0, 90, 180, 255);
    Frame target = Frame::picture(160, 90, AV_PIX_FMT_GRAY8);
    fillPlane(target, 0, 160, 90, 7);

    Scaler().scale(source, Rect{0, 0, 90, 180}, target, Rect{57, 10, 45, 70});

    for (int y = 0; y < 90; ++y) {
        for (int x = 0; x < 102; ++x) {
            const bool inside = x >= 57 && y >= 10 && y < 80;
            ASSERT_EQ(pixel(target, 0, x, y), inside ? 255 : 7) << x << "," << y;
        }
    }
}

TEST(ScalerTest, RgbWhiteBecomesLimitedRangeWhiteInYuv) {
    Frame source = Frame::picture(16, 16, AV_PIX_FMT_RGB24);
    fillPlane(source, 0, 16 * 3, 16, 255);
    Frame target = Frame::picture(16, 16, AV_PIX_FMT_YUV420P);

    Scaler().scale(source, target);

    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_EQ(pixel(target, 0, x, y), 235) << x << "," << y;
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            ASSERT_EQ(pixel(target, 1, x, y), 128) << x << "," << y;
            ASSERT_EQ(pixel(target, 2, x, y), 128) << x << "," << y;
        }
    }
}

TEST(ScalerTest, RgbWhiteBecomesFullRangeWhiteInYuvj) {
    Frame source = Frame::picture(16, 16, AV_PIX_FMT_RGB24);
    fillPlane(source, 0, 16 * 3, 16, 255);
    Frame target = Frame::picture(16, 16, AV_PIX_FMT_YUVJ420P);

    Scaler().scale(source, target);

    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_EQ(pixel(target, 0, x, y), 255) << x << "," << y;
}

TEST(ScalerTest, ChromaRegionStartsAtHalfTheLumaOffset) {
    Frame source = Frame::picture(8, 8, AV_PIX_FMT_YUV420P);
    fillPlane(source, 0, 8, 8, 100);
    fillPlane(source, 1, 4, 4, 60);
    fillPlane(source, 2, 4, 4, 190);
    Frame target = Frame::picture(16, 12, AV_PIX_FMT_YUV420P);
    fillPlane(target, 0, 16, 12, 16);
    fillPlane(target, 1, 8, 6, 128);
    fillPlane(target, 2, 8, 6, 128);

    Scaler().scale(source, Rect{0, 0, 8, 8}, target, Rect{4, 2, 8, 8});

    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool inside = x >= 2 && x < 6 && y >= 1 && y < 5;
            ASSERT_EQ(pixel(target, 1, x, y), inside ? 60 : 128) << x << "," << y;
            ASSERT_EQ(pixel(target, 2, x, y), inside ? 190 : 128) << x << "," << y;
        }
    }
}

TEST(ScalerTest, KeepsItsContextWhileTheGeometryStays) {
    Frame source = Frame::picture(64, 36, AV_PIX_FMT_YUV420P);
    Frame target = Frame::picture(32, 18, AV_PIX_FMT_RGB24);
    Frame otherTarget = Frame::picture(48, 18, AV_PIX_FMT_RGB24);
    Scaler scaler;

    scaler.scale(source, target);
    scaler.scale(source, target);
    EXPECT_EQ(scaler.contextsCreated(), 1);

    scaler.scale(source, otherTarget);
    EXPECT_EQ(scaler.contextsCreated(), 2);
    scaler.scale(source, Rect{0, 0, 32, 18}, target, Rect{0, 0, 32, 18});
    EXPECT_EQ(scaler.contextsCreated(), 3);
}

TEST(ScalerTest, SliceThreadsGiveTheSamePixelsAsOneThread) {
    Frame source = Frame::picture(1920, 1080, AV_PIX_FMT_YUV420P);
    for (int y = 0; y < 1080; ++y)
        for (int x = 0; x < 1920; ++x)
            pixel(source, 0, x, y) = static_cast<std::uint8_t>((x * 7 + y * 3) % 256);
    Frame threaded = Frame::picture(1280, 720, AV_PIX_FMT_YUV420P);
    Frame single = Frame::picture(1280, 720, AV_PIX_FMT_YUV420P);
    Scaler threadedScaler(2);
    Scaler singleScaler(1);

    threadedScaler.scale(source, threaded);
    singleScaler.scale(source, single);

    EXPECT_EQ(threadedScaler.threads(), 2);
    EXPECT_EQ(singleScaler.threads(), 1);
    for (int y = 0; y < 720; ++y)
        for (int x = 0; x < 1280; ++x)
            ASSERT_EQ(pixel(threaded, 0, x, y), pixel(single, 0, x, y)) << x << "," << y;
}

TEST(ScalerTest, NoThreadsUntilTheFirstScale) {
    EXPECT_EQ(Scaler(2).threads(), 0);
    EXPECT_EQ(Scaler(2).contextsCreated(), 0);
}

TEST(ScalerTest, FormatLibswscaleCanNotWriteFailsWithItsReason) {
    Frame source = Frame::picture(8, 8, AV_PIX_FMT_RGB24);
    Frame target = Frame::picture(8, 8, AV_PIX_FMT_PAL8);
    EXPECT_THAT([&] { Scaler().scale(source, target); },
                FailedWith<MediaError>(
                    "Can not set up scaling from 8x8 rgb24 to 8x8 pal8: Invalid argument"));
}

TEST(ScalerTest, RegionOutsideThePictureIsRefused) {
    Frame source = Frame::picture(8, 8, AV_PIX_FMT_GRAY8);
    Frame target = Frame::picture(8, 8, AV_PIX_FMT_GRAY8);
    EXPECT_THAT(
        [&] {
            Scaler().scale(source, Rect{4, 0, 8, 8}, target, Rect{0, 0, 8, 8});
        },
        FailedWith<std::out_of_range>("The region 8x8 at 4,0 is not inside the 8x8 picture"));
}

} // namespace
