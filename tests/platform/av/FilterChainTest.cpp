#include "platform/av/FilterChain.h"
#include "platform/av/MediaError.h"
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

int countAbove(const Frame& picture, int threshold) {
    int count = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width() * 3; ++x)
            count += picture->data[0][y * picture->linesize[0] + x] > threshold;
    return count;
}

TEST(FilterChainTest, AnEmptyChainConvertsToTheOutputFormat) {
    FilterChain chain(Size{8, 6}, AV_PIX_FMT_RGB24, {}, AV_PIX_FMT_GRAY8);
    Frame white = Frame::picture(8, 6, AV_PIX_FMT_RGB24);
    for (int y = 0; y < 6; ++y)
        std::fill_n(white->data[0] + y * white->linesize[0], 24, 255);
    const Frame out = chain.run(white);
    EXPECT_EQ(out.format(), AV_PIX_FMT_GRAY8);
    EXPECT_EQ(out.width(), 8);
    EXPECT_EQ(out->data[0][0], 255);
}

TEST(FilterChainTest, DrawtextTakesItsTextUnescaped) {
    const std::vector<FilterStep> filters{{"drawtext",
                                           {{"text", "a:b'c\\d%{pts}"},
                                            {"expansion", "none"},
                                            {"font", "DejaVu Sans"},
                                            {"fontsize", "20"},
                                            {"fontcolor", "#ffffff"}}}};
    FilterChain chain(Size{160, 40}, AV_PIX_FMT_RGB24, filters, AV_PIX_FMT_RGB24);
    const Frame black = Frame::picture(160, 40, AV_PIX_FMT_RGB24);
    const Frame first = chain.run(black);
    const Frame second = chain.run(black);
    EXPECT_GT(countAbove(first, 128), 50);
    EXPECT_EQ(countAbove(first, 128), countAbove(second, 128));
    EXPECT_EQ(countAbove(black, 0), 0);
}

TEST(FilterChainTest, AnUnknownFilterIsNamed) {
    EXPECT_THAT(
        [] {
            FilterChain(Size{8, 8}, AV_PIX_FMT_RGB24, {{"nosuch", {}}}, AV_PIX_FMT_RGB24);
        },
        FailedWith<MediaError>("Can not set up the filter nosuch: Filter not found"));
}

TEST(FilterChainTest, AnUnknownOptionIsNamed) {
    EXPECT_THAT(
        [] {
            FilterChain(Size{8, 8}, AV_PIX_FMT_RGB24, {{"drawtext", {{"nosuch", "1"}}}},
                        AV_PIX_FMT_RGB24);
        },
        FailedWith<MediaError>("Can not set up the filter drawtext: nosuch: Option not found"));
}

TEST(FilterChainTest, APictureOfAnotherSizeIsRefused) {
    FilterChain chain(Size{8, 6}, AV_PIX_FMT_RGB24, {}, AV_PIX_FMT_RGB24);
    EXPECT_THAT([&] { chain.run(Frame::picture(6, 6, AV_PIX_FMT_RGB24)); },
                FailedWith<std::invalid_argument>(
                    "A filter chain for 8x6 rgb24 can not take a 6x6 rgb24 picture"));
}

} // namespace
