#include "platform/proc/FillGeometry.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <stdexcept>

using EditorService::Testing::FailedWith;
using Velmor::AV::Rect;
using Velmor::AV::Size;
using Velmor::Proc::FillGeometry;
using Velmor::Proc::SettingsResizer;

namespace Velmor::AV {
void PrintTo(const Rect& rect, std::ostream* out) {
    *out << rect.width << "x" << rect.height << " at " << rect.x << "," << rect.y;
}
} // namespace Velmor::AV

namespace Velmor::Proc {
void PrintTo(const FillGeometry& geometry, std::ostream* out) {
    *out << "from ";
    AV::PrintTo(geometry.source, out);
    *out << " onto ";
    AV::PrintTo(geometry.target, out);
}
} // namespace Velmor::Proc

namespace {

struct Row {
    const char* name;
    SettingsResizer::CustomModes mode;
    Size source;
    Size target;
    Size chromaBlock;
    Rect expectedSource;
    Rect expectedTarget;
};

class FillGeometryTest : public testing::TestWithParam<Row> {};

TEST_P(FillGeometryTest, ShowsAndPaintsTheExpectedRectangles) {
    const Row& row = GetParam();
    const FillGeometry expected{row.expectedSource, row.expectedTarget};
    EXPECT_EQ(Velmor::Proc::fillGeometry(row.source, row.target, row.mode, row.chromaBlock),
              expected);
}

// Target 160x90 throughout. Sources: wider 320x90, taller 90x180, smaller 40x40, larger
// 640x480, equal 160x90, odd 101x51.
constexpr Size target{160, 90};
constexpr Size pixel{1, 1};
constexpr Size yuv420{2, 2};
constexpr Rect whole{0, 0, 160, 90};
constexpr auto Fit = SettingsResizer::Fit;
constexpr auto Fill = SettingsResizer::Fill;
constexpr auto Stretch = SettingsResizer::Stretch;
constexpr auto FitWidth = SettingsResizer::FitWidth;
constexpr auto FitHeight = SettingsResizer::FitHeight;
constexpr auto Center = SettingsResizer::Center;

const Row rows[] = {
    {"FitWider", Fit, {320, 90}, target, pixel, {0, 0, 320, 90}, {0, 22, 160, 45}},
    {"FitTaller", Fit, {90, 180}, target, pixel, {0, 0, 90, 180}, {57, 0, 45, 90}},
    {"FitSmaller", Fit, {40, 40}, target, pixel, {0, 0, 40, 40}, {35, 0, 90, 90}},
    {"FitLarger", Fit, {640, 480}, target, pixel, {0, 0, 640, 480}, {20, 0, 120, 90}},
    {"FitEqual", Fit, {160, 90}, target, pixel, whole, whole},
    {"FitSameProportions", Fit, {1920, 1080}, target, pixel, {0, 0, 1920, 1080}, whole},
    {"FitOdd", Fit, {101, 51}, target, pixel, {0, 0, 101, 51}, {0, 4, 160, 81}},
    {"FitOddIn420", Fit, {101, 51}, target, yuv420, {0, 0, 101, 51}, {0, 4, 160, 80}},
    {"FitTallerIn420", Fit, {90, 180}, target, yuv420, {0, 0, 90, 180}, {56, 0, 46, 90}},
    {"FillWider", Fill, {320, 90}, target, pixel, {80, 0, 160, 90}, whole},
    {"FillTaller", Fill, {90, 180}, target, pixel, {0, 64, 90, 51}, whole},
    {"FillSmaller", Fill, {40, 40}, target, pixel, {0, 8, 40, 23}, whole},
    {"FillLarger", Fill, {640, 480}, target, pixel, {0, 60, 640, 360}, whole},
    {"FillEqual", Fill, {160, 90}, target, pixel, whole, whole},
    {"FillOdd", Fill, {101, 51}, target, pixel, {5, 0, 91, 51}, whole},
    {"FillOddIn420", Fill, {101, 51}, target, yuv420, {4, 0, 91, 51}, whole},
    {"StretchWider", Stretch, {320, 90}, target, pixel, {0, 0, 320, 90}, whole},
    {"StretchTaller", Stretch, {90, 180}, target, pixel, {0, 0, 90, 180}, whole},
    {"StretchSmaller", Stretch, {40, 40}, target, pixel, {0, 0, 40, 40}, whole},
    {"StretchLarger", Stretch, {640, 480}, target, pixel, {0, 0, 640, 480}, whole},
    {"StretchEqual", Stretch, {160, 90}, target, pixel, whole, whole},
    {"StretchOdd", Stretch, {101, 51}, target, yuv420, {0, 0, 101, 51}, whole},
    {"FitWidthWider", FitWidth, {320, 90}, target, pixel, {0, 0, 320, 90}, {0, 22, 160, 45}},
    {"FitWidthTaller", FitWidth, {90, 180}, target, pixel, {0, 64, 90, 51}, whole},
    {"FitWidthSmaller", FitWidth, {40, 40}, target, pixel, {0, 8, 40, 23}, whole},
    {"FitWidthLarger", FitWidth, {640, 480}, target, pixel, {0, 60, 640, 360}, whole},
    {"FitWidthEqual", FitWidth, {160, 90}, target, pixel, whole, whole},
    {"FitWidthOdd", FitWidth, {101, 51}, target, pixel, {0, 0, 101, 51}, {0, 4, 160, 81}},
    {"FitWidthWiderIn420", FitWidth, {320, 90}, target, yuv420, {0, 0, 320, 90}, {0, 22, 160, 46}},
    {"FitHeightWider", FitHeight, {320, 90}, target, pixel, {80, 0, 160, 90}, whole},
    {"FitHeightTaller", FitHeight, {90, 180}, target, pixel, {0, 0, 90, 180}, {57, 0, 45, 90}},
    {"FitHeightSmaller", FitHeight, {40, 40}, target, pixel, {0, 0, 40, 40}, {35, 0, 90, 90}},
    {"FitHeightLarger", FitHeight, {640, 480}, target, pixel, {0, 0, 640, 480}, {20, 0, 120, 90}},
    {"FitHeightEqual", FitHeight, {160, 90}, target, pixel, whole, whole},
    {"FitHeightOdd", FitHeight, {101, 51}, target, pixel, {5, 0, 91, 51}, whole},
    {"CenterWider", Center, {320, 90}, target, pixel, {80, 0, 160, 90}, whole},
    {"CenterTaller", Center, {90, 180}, target, pixel, {0, 45, 90, 90}, {35, 0, 90, 90}},
    {"CenterSmaller", Center, {40, 40}, target, pixel, {0, 0, 40, 40}, {60, 25, 40, 40}},
    {"CenterLarger", Center, {640, 480}, target, pixel, {240, 195, 160, 90}, whole},
    {"CenterEqual", Center, {160, 90}, target, pixel, whole, whole},
    {"CenterOdd", Center, {101, 51}, target, pixel, {0, 0, 101, 51}, {29, 19, 101, 51}},
    {"CenterOddIn420", Center, {101, 51}, target, yuv420, {0, 0, 101, 51}, {28, 18, 101, 51}},
    {"CenterOneLarger", Center, {161, 91}, target, pixel, {0, 0, 160, 90}, whole},
    {"CenterThreeLargerIn420", Center, {163, 93}, target, yuv420, {0, 0, 160, 90}, whole},
};

INSTANTIATE_TEST_SUITE_P(Modes, FillGeometryTest, testing::ValuesIn(rows),
                         [](const testing::TestParamInfo<Row>& info) { return info.param.name; });

void expectRefusal(Size source, Size target, const std::string& text) {
    EXPECT_THAT([&] { Velmor::Proc::fillGeometry(source, target, SettingsResizer::Fit); },
                FailedWith<std::invalid_argument>(text));
}

TEST(FillGeometryFailureTest, TargetWithoutPixelsIsRefused) {
    expectRefusal({160, 90}, {0, 90},
                  "Can not resize to 0x90: the width and the height must be positive");
    expectRefusal({160, 90}, {160, -2},
                  "Can not resize to 160x-2: the width and the height must be positive");
}

TEST(FillGeometryFailureTest, SourceWithoutPixelsIsRefused) {
    expectRefusal({0, 0}, {160, 90},
                  "Can not resize a picture of 0x0: the width and the height must be positive");
}

TEST(FillGeometryFailureTest, NumberOutsideTheModesIsRefused) {
    EXPECT_THAT(
        [&] {
            Velmor::Proc::fillGeometry({1, 1}, {1, 1},
                                       static_cast<SettingsResizer::CustomModes>(6));
        },
        FailedWith<std::out_of_range>("No resize mode with the number 6"));
}

TEST(FillGeometryBarsTest, BarsSurroundThePaintedRectangle) {
    const auto bars = Velmor::Proc::barsAround(Rect{35, 10, 90, 70}, Size{160, 90});
    EXPECT_EQ(bars[0], (Rect{0, 0, 160, 10}));
    EXPECT_EQ(bars[1], (Rect{0, 80, 160, 10}));
    EXPECT_EQ(bars[2], (Rect{0, 10, 35, 70}));
    EXPECT_EQ(bars[3], (Rect{125, 10, 35, 70}));
}

TEST(FillGeometryBarsTest, WholePictureHasOnlyEmptyBars) {
    for (const Rect& bar : Velmor::Proc::barsAround(Rect{0, 0, 160, 90}, Size{160, 90}))
        EXPECT_TRUE(bar.isEmpty());
}

} // namespace
