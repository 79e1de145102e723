#include "platform/proc/Resizer.h"
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
using Velmor::Proc::Resizer;
using Velmor::Proc::SettingsResizer;

namespace {

std::uint8_t& sample(const Frame& picture, int plane, int x, int y) {
    return picture->data[plane][y * picture->linesize[plane] + x];
}

// Every sample of the plane in the first `width` bytes of its first `height` rows.
void fillPlane(const Frame& picture, int plane, int width, int height, std::uint8_t value) {
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            sample(picture, plane, x, y) = value;
}

Frame whitePicture(int width, int height, int pixelFormat) {
    Frame picture = Frame::picture(width, height, pixelFormat);
    switch (pixelFormat) {
    case AV_PIX_FMT_RGB24:
        fillPlane(picture, 0, width * 3, height, 255);
        break;
    case AV_PIX_FMT_GRAY8:
        fillPlane(picture, 0, width, height, 255);
        break;
    case AV_PIX_FMT_YUV420P:
        fillPlane(picture, 0, width, height, 235);
        fillPlane(picture, 1, (width + 1) / 2, (height + 1) / 2, 128);
        fillPlane(picture, 2, (width + 1) / 2, (height + 1) / 2, 128);
        break;
    default:
        ADD_FAILURE() << "no white for format " << pixelFormat;
    }
    return picture;
}

// An RGB picture whose red is the column's number and green the row's, so a crop shows which
// pixels survived.
Frame numberedPicture(int width, int height) {
    Frame picture = Frame::picture(width, height, AV_PIX_FMT_RGB24);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            sample(picture, 0, 3 * x, y) = static_cast<std::uint8_t>(x);
            sample(picture, 0, 3 * x + 1, y) = static_cast<std::uint8_t>(y);
        }
    }
    return picture;
}

SettingsResizer settings(int width, int height, SettingsResizer::CustomModes mode,
                         int pixelFormat) {
    SettingsResizer settings;
    settings.width = width;
    settings.height = height;
    settings.mode = mode;
    settings.pixelFormat = pixelFormat;
    return settings;
}

// Asserts that the first plane holds `inside` within [left, right) x [top, bottom) and
// `outside` elsewhere; bytesPerPixel widens the columns for packed formats.
void expectPainted(const Frame& picture, int left, int top, int right, int bottom,
                   std::uint8_t inside, std::uint8_t outside, int bytesPerPixel = 1) {
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool isInside = x >= left && x < right && y >= top && y < bottom;
            for (int byte = 0; byte < bytesPerPixel; ++byte)
                ASSERT_EQ(sample(picture, 0, x * bytesPerPixel + byte, y),
                          isInside ? inside : outside)
                    << "pixel " << x << "," << y;
        }
    }
}

TEST(ResizerTest, FitBarsAboveAndBelowAWiderSourceInRgb) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_RGB24));

    const Frame output = resizer.Resize(whitePicture(320, 90, AV_PIX_FMT_RGB24));

    ASSERT_EQ(output.width(), 160);
    ASSERT_EQ(output.height(), 90);
    ASSERT_EQ(output.format(), AV_PIX_FMT_RGB24);
    expectPainted(output, 0, 22, 160, 67, 255, 0, 3);
}

TEST(ResizerTest, FitBarsLeftAndRightOfATallerSourceInGrey) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_GRAY8));

    const Frame output = resizer.Resize(whitePicture(90, 180, AV_PIX_FMT_GRAY8));

    expectPainted(output, 57, 0, 102, 90, 255, 0);
}

TEST(ResizerTest, FitBarsAreLimitedRangeBlackInYuvAtEvenOffsets) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_YUV420P));

    const Frame output = resizer.Resize(whitePicture(90, 180, AV_PIX_FMT_YUV420P));

    expectPainted(output, 56, 0, 102, 90, 235, 16);
    for (int plane = 1; plane < 3; ++plane)
        for (int y = 0; y < 45; ++y)
            for (int x = 0; x < 80; ++x)
                ASSERT_EQ(sample(output, plane, x, y), 128) << plane << ": " << x << "," << y;
}

TEST(ResizerTest, FitBarsAreFullRangeBlackInYuvj) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_YUVJ420P));

    const Frame output = resizer.Resize(whitePicture(320, 90, AV_PIX_FMT_RGB24));

    expectPainted(output, 0, 22, 160, 68, 255, 0);
    EXPECT_EQ(output->color_range, AVCOL_RANGE_JPEG);
}

TEST(ResizerTest, FitWidthBarsAboveAndBelowASmallerWiderSource) {
    Resizer resizer(settings(160, 90, SettingsResizer::FitWidth, AV_PIX_FMT_GRAY8));

    const Frame output = resizer.Resize(whitePicture(80, 20, AV_PIX_FMT_GRAY8));

    expectPainted(output, 0, 25, 160, 65, 255, 0);
}

TEST(ResizerTest, FitHeightBarsLeftAndRightOfASmallerSource) {
    Resizer resizer(settings(160, 90, SettingsResizer::FitHeight, AV_PIX_FMT_GRAY8));

    const Frame output = resizer.Resize(whitePicture(40, 40, AV_PIX_FMT_GRAY8));

    expectPainted(output, 35, 0, 125, 90, 255, 0);
}

TEST(ResizerTest, FillCropsTheColumnsOfAWiderSourceCentrally) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fill, AV_PIX_FMT_RGB24));

    const Frame output = resizer.Resize(numberedPicture(320, 90));

    for (int y = 0; y < 90; ++y) {
        for (int x = 0; x < 160; ++x) {
            ASSERT_EQ(sample(output, 0, 3 * x, y), 80 + x) << x << "," << y;
            ASSERT_EQ(sample(output, 0, 3 * x + 1, y), y) << x << "," << y;
        }
    }
}

TEST(ResizerTest, FillCropsTheRowsOfATallerSourceCentrally) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fill, AV_PIX_FMT_RGB24));

    const Frame output = resizer.Resize(numberedPicture(160, 200));

    for (int y = 0; y < 90; ++y) {
        for (int x = 0; x < 160; ++x) {
            ASSERT_EQ(sample(output, 0, 3 * x, y), x) << x << "," << y;
            ASSERT_EQ(sample(output, 0, 3 * x + 1, y), 55 + y) << x << "," << y;
        }
    }
}

TEST(ResizerTest, FitWidthCropsTheRowsOfATallerSourceCentrally) {
    Resizer resizer(settings(160, 90, SettingsResizer::FitWidth, AV_PIX_FMT_RGB24));

    const Frame output = resizer.Resize(numberedPicture(160, 101));

    for (int y = 0; y < 90; ++y)
        ASSERT_EQ(sample(output, 0, 1, y), 5 + y) << y;
}

TEST(ResizerTest, StretchPaintsEveryPixel) {
    Resizer resizer(settings(160, 90, SettingsResizer::Stretch, AV_PIX_FMT_RGB24));

    const Frame output = resizer.Resize(whitePicture(40, 40, AV_PIX_FMT_RGB24));

    expectPainted(output, 0, 0, 160, 90, 255, 0, 3);
}

TEST(ResizerTest, CenterCropsALargerSourceCentrally) {
    Resizer resizer(settings(160, 90, SettingsResizer::Center, AV_PIX_FMT_RGB24));

    const Frame output = resizer.Resize(numberedPicture(200, 120));

    for (int y = 0; y < 90; ++y) {
        for (int x = 0; x < 160; ++x) {
            ASSERT_EQ(sample(output, 0, 3 * x, y), 20 + x) << x << "," << y;
            ASSERT_EQ(sample(output, 0, 3 * x + 1, y), 15 + y) << x << "," << y;
        }
    }
}

TEST(ResizerTest, CenterBarsASmallerSourceWithoutScaling) {
    Resizer resizer(settings(160, 90, SettingsResizer::Center, AV_PIX_FMT_RGB24));

    const Frame output = resizer.Resize(numberedPicture(41, 40));

    for (int y = 0; y < 90; ++y) {
        for (int x = 0; x < 160; ++x) {
            const bool inside = x >= 59 && x < 100 && y >= 25 && y < 65;
            ASSERT_EQ(sample(output, 0, 3 * x, y), inside ? x - 59 : 0) << x << "," << y;
            ASSERT_EQ(sample(output, 0, 3 * x + 1, y), inside ? y - 25 : 0) << x << "," << y;
        }
    }
}

TEST(ResizerTest, SameSizeAndFormatPassesThroughSharingTheBuffers) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_YUV420P));
    Frame source = whitePicture(160, 90, AV_PIX_FMT_YUV420P);
    source->pts = 3003;

    const Frame output = resizer.Resize(source);

    EXPECT_EQ(output->data[0], source->data[0]);
    EXPECT_EQ(output->buf[0]->buffer, source->buf[0]->buffer);
    EXPECT_EQ(output->pts, 3003);
}

TEST(ResizerTest, UnsetFormatKeepsTheSources) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, -1));
    const Frame source = whitePicture(160, 90, AV_PIX_FMT_GRAY8);

    const Frame shared = resizer.Resize(source);
    const Frame scaled = resizer.Resize(whitePicture(320, 180, AV_PIX_FMT_GRAY8));

    EXPECT_EQ(shared->data[0], source->data[0]);
    EXPECT_EQ(scaled.format(), AV_PIX_FMT_GRAY8);
    expectPainted(scaled, 0, 0, 160, 90, 255, 0);
}

TEST(ResizerTest, SameSizeInAnotherFormatIsConverted) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_GRAY8));
    const Frame source = whitePicture(160, 90, AV_PIX_FMT_RGB24);

    const Frame output = resizer.Resize(source);

    EXPECT_NE(output->data[0], source->data[0]);
    EXPECT_EQ(output.format(), AV_PIX_FMT_GRAY8);
    expectPainted(output, 0, 0, 160, 90, 255, 0);
}

TEST(ResizerTest, TimestampsAndPropertiesAreCarriedOver) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_YUV420P));
    Frame source = whitePicture(320, 90, AV_PIX_FMT_RGB24);
    source->pts = 90000;
    source->pkt_dts = 87000;
    source->best_effort_timestamp = 90000;
    source->pkt_duration = 3000;
    source->time_base = AVRational{1, 90000};
    source->sample_aspect_ratio = AVRational{16, 15};

    const Frame output = resizer.Resize(source);

    EXPECT_EQ(output->pts, 90000);
    EXPECT_EQ(output->pkt_dts, 87000);
    EXPECT_EQ(output.timestamp(), 90000);
    EXPECT_EQ(output->pkt_duration, 3000);
    EXPECT_EQ(output->time_base.num, 1);
    EXPECT_EQ(output->time_base.den, 90000);
    EXPECT_EQ(output->sample_aspect_ratio.num, 16);
    EXPECT_EQ(output->sample_aspect_ratio.den, 15);
    EXPECT_EQ(output->color_range, AVCOL_RANGE_MPEG);
}

TEST(ResizerTest, KeepsResizingFrameAfterFrame) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_GRAY8));

    for (int frame = 0; frame < 3; ++frame) {
        const Frame output = resizer.Resize(whitePicture(90, 180, AV_PIX_FMT_GRAY8));
        expectPainted(output, 57, 0, 102, 90, 255, 0);
    }
    const Frame other = resizer.Resize(whitePicture(320, 90, AV_PIX_FMT_GRAY8));
    expectPainted(other, 0, 22, 160, 67, 255, 0);
}

template <typename Error>
void expectConstructionFails(const SettingsResizer& settings, const std::string& text) {
    EXPECT_THAT([&] { Resizer resizer(settings); }, FailedWith<Error>(text));
}

TEST(ResizerTest, SizeWithoutPixelsIsRefusedAtOnce) {
    expectConstructionFails<std::invalid_argument>(
        settings(0, 90, SettingsResizer::Fit, AV_PIX_FMT_RGB24),
        "Can not resize to 0x90: the width and the height must be positive");
    expectConstructionFails<std::invalid_argument>(
        settings(160, -90, SettingsResizer::Fill, AV_PIX_FMT_RGB24),
        "Can not resize to 160x-90: the width and the height must be positive");
    expectConstructionFails<std::invalid_argument>(
        settings(0, 0, SettingsResizer::Center, AV_PIX_FMT_RGB24),
        "Can not resize to 0x0: the width and the height must be positive");
}

TEST(ResizerTest, UnknownModeIsRefusedAtOnce) {
    expectConstructionFails<std::out_of_range>(
        settings(160, 90, static_cast<SettingsResizer::CustomModes>(7), AV_PIX_FMT_RGB24),
        "No resize mode with the number 7");
}

TEST(ResizerTest, UnknownPixelFormatIsRefusedAtOnce) {
    expectConstructionFails<std::invalid_argument>(settings(160, 90, SettingsResizer::Fit, 100000),
                                                   "No pixel format with the number 100000");
}

TEST(ResizerTest, EmptySourceIsRefused) {
    Resizer resizer(settings(160, 90, SettingsResizer::Fit, AV_PIX_FMT_RGB24));
    EXPECT_THAT([&] { resizer.Resize(Frame()); },
                FailedWith<std::invalid_argument>(
                    "Can not resize a picture of 0x0: the width and the height must be positive"));
}

} // namespace
