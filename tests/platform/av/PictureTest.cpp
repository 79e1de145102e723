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
using namespace Velmor::AV;

namespace {

std::uint8_t& pixel(const Frame& picture, int plane, int x, int y) {
    return picture->data[plane][y * picture->linesize[plane] + x];
}

void fillPlane(const Frame& picture, int plane, int width, int height, std::uint8_t value) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            pixel(picture, plane, x, y) = value;
}

TEST(PictureTest, PixelFormatsAreNamedAsFfmpegNamesThem) {
    EXPECT_EQ(pixelFormat("yuv420p"), AV_PIX_FMT_YUV420P);
    EXPECT_EQ(pixelFormat("rgb24"), AV_PIX_FMT_RGB24);
    EXPECT_EQ(pixelFormatName(AV_PIX_FMT_GRAY8), "gray");
    EXPECT_EQ(pixelFormatName(AV_PIX_FMT_NONE), "none");
}

TEST(PictureTest, UnknownPixelFormatNameIsRefused) {
    EXPECT_THAT([&] { pixelFormat("yuv420"); },
                FailedWith<std::invalid_argument>("No pixel format named \"yuv420\""));
}

TEST(PictureTest, ChromaBlockIsTheSubsampling) {
    EXPECT_EQ(chromaBlock(AV_PIX_FMT_YUV420P), (Size{2, 2}));
    EXPECT_EQ(chromaBlock(AV_PIX_FMT_YUV422P), (Size{2, 1}));
    EXPECT_EQ(chromaBlock(AV_PIX_FMT_NV12), (Size{2, 2}));
    EXPECT_EQ(chromaBlock(AV_PIX_FMT_RGB24), (Size{1, 1}));
    EXPECT_EQ(chromaBlock(AV_PIX_FMT_GRAY8), (Size{1, 1}));
}

TEST(PictureTest, BlackIsLimitedRangeInYuvAndFullInYuvj) {
    Frame limited = Frame::picture(4, 4, AV_PIX_FMT_YUV420P);
    Frame full = Frame::picture(4, 4, AV_PIX_FMT_YUVJ420P);
    Frame marked = Frame::picture(4, 4, AV_PIX_FMT_YUV420P);
    marked->color_range = AVCOL_RANGE_JPEG;
    for (Frame* picture : {&limited, &full, &marked}) {
        fillPlane(*picture, 0, 4, 4, 77);
        paintBlack(*picture, Rect{0, 0, 4, 4});
        EXPECT_EQ(pixel(*picture, 1, 1, 1), 128);
        EXPECT_EQ(pixel(*picture, 2, 1, 1), 128);
    }
    EXPECT_EQ(pixel(limited, 0, 3, 3), 16);
    EXPECT_EQ(pixel(full, 0, 3, 3), 0);
    EXPECT_EQ(pixel(marked, 0, 3, 3), 0);
}

TEST(PictureTest, BlackIsZeroInRgbAndGrey) {
    Frame rgb = Frame::picture(4, 4, AV_PIX_FMT_RGB24);
    Frame grey = Frame::picture(4, 4, AV_PIX_FMT_GRAY8);
    fillPlane(rgb, 0, 12, 4, 77);
    fillPlane(grey, 0, 4, 4, 77);

    paintBlack(rgb, Rect{0, 0, 4, 4});
    paintBlack(grey, Rect{0, 0, 4, 4});

    EXPECT_EQ(pixel(rgb, 0, 11, 3), 0);
    EXPECT_EQ(pixel(grey, 0, 3, 3), 0);
}

TEST(PictureTest, PaintsOnlyItsRegion) {
    Frame picture = Frame::picture(6, 4, AV_PIX_FMT_RGB24);
    fillPlane(picture, 0, 18, 4, 255);

    paintBlack(picture, Rect{2, 1, 3, 2});

    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 18; ++x) {
            const bool inside = x >= 6 && x < 15 && y >= 1 && y < 3;
            ASSERT_EQ(pixel(picture, 0, x, y), inside ? 0 : 255) << x << "," << y;
        }
    }
}

TEST(PictureTest, RegionViewSharesThePicturesBuffers) {
    Frame picture = Frame::picture(8, 8, AV_PIX_FMT_YUV420P);
    Frame view;

    showRegion(view, picture, Rect{2, 4, 4, 2});

    EXPECT_EQ(view.width(), 4);
    EXPECT_EQ(view.height(), 2);
    EXPECT_EQ(view->data[0], &pixel(picture, 0, 2, 4));
    EXPECT_EQ(view->data[1], &pixel(picture, 1, 1, 2));
    EXPECT_EQ(view->data[2], &pixel(picture, 2, 1, 2));
    EXPECT_EQ(view->buf[0]->buffer, picture->buf[0]->buffer);
}

TEST(PictureTest, EmptyRegionIsRefused) {
    Frame picture = Frame::picture(8, 8, AV_PIX_FMT_GRAY8);
    EXPECT_THAT(
        [&] {
            paintBlack(picture, Rect{0, 0, 0, 8});
        },
        FailedWith<std::out_of_range>("The region 0x8 at 0,0 is not inside the 8x8 picture"));
}

TEST(PictureTest, ReferenceSharesTheBuffersAndTheTimestamp) {
    Frame picture = Frame::picture(8, 8, AV_PIX_FMT_GRAY8);
    picture->pts = 1234;

    const Frame shared = reference(picture);

    EXPECT_EQ(shared->data[0], picture->data[0]);
    EXPECT_EQ(shared->pts, 1234);
}

TEST(PictureTest, CopiedPropertiesTakeTheRangeOfTheirOwnFormat) {
    Frame from = Frame::picture(8, 8, AV_PIX_FMT_YUVJ420P);
    from->pts = 42;
    from->time_base = AVRational{1, 25};
    from->sample_aspect_ratio = AVRational{4, 3};
    from->color_range = AVCOL_RANGE_JPEG;
    Frame limited = Frame::picture(8, 8, AV_PIX_FMT_YUV420P);
    Frame rgb = Frame::picture(8, 8, AV_PIX_FMT_RGB24);

    copyProperties(limited, from);
    copyProperties(rgb, from);

    EXPECT_EQ(limited->pts, 42);
    EXPECT_EQ(limited->time_base.den, 25);
    EXPECT_EQ(limited->sample_aspect_ratio.num, 4);
    EXPECT_EQ(limited->sample_aspect_ratio.den, 3);
    EXPECT_EQ(limited->color_range, AVCOL_RANGE_MPEG);
    EXPECT_EQ(rgb->pts, 42);
    EXPECT_EQ(rgb->color_range, AVCOL_RANGE_UNSPECIFIED);
}

TEST(PictureTest, ACopyHasItsOwnBuffersAndTheSamePixels) {
    Frame picture = Frame::picture(4, 4, AV_PIX_FMT_YUV420P);
    fillPlane(picture, 0, 4, 4, 77);
    picture.setTimestamp(9);
    Frame copy = copyOf(picture);
    EXPECT_NE(copy->data[0], picture->data[0]);
    EXPECT_EQ(pixel(copy, 0, 3, 3), 77);
    EXPECT_EQ(copy.timestamp(), 9);
    pixel(copy, 0, 0, 0) = 1;
    EXPECT_EQ(pixel(picture, 0, 0, 0), 77);
}

} // namespace
