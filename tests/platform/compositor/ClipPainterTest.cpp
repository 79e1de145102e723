#include "platform/compositor/ClipPainter.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Composition::ClipPainter;

namespace {

TEST(ClipPainterTest, AColourClipIsItsColour) {
    ClipPainter painter(Velmor::AV::Size{8, 8}, Effects::Colour{});
    Project::VideoClip clip;
    clip.kind = Project::VideoClip::Kind::Colour;
    clip.colour = {255, 255, 255};
    EXPECT_EQ(sampleAt(painter.paint(clip, 0, {}, 0), 0, 4, 4), 235);
}

TEST(ClipPainterTest, AStillIsFittedOnceAndHandedOutAsACopy) {
    ClipPainter painter(Velmor::AV::Size{16, 8}, Effects::Colour{255, 255, 255});
    Project::VideoClip clip;
    clip.kind = Project::VideoClip::Kind::Still;
    const auto square = uniformPicture(8, 8, 100);
    int asked = 0;
    const auto source = [&]() -> const Velmor::AV::Frame& {
        ++asked;
        return square;
    };
    auto first = painter.paint(clip, 3, source, 0);
    EXPECT_EQ(sampleAt(first, 0, 0, 0), 235);
    EXPECT_EQ(sampleAt(first, 0, 8, 4), 100);
    setSample(first, 0, 8, 4, 1);
    const auto second = painter.paint(clip, 3, source, 0.5);
    EXPECT_EQ(sampleAt(second, 0, 8, 4), 100);
    EXPECT_EQ(asked, 1);
}

TEST(ClipPainterTest, APanAndZoomFillsTheFrameWithItsRectangle) {
    ClipPainter painter(Velmor::AV::Size{8, 8}, Effects::Colour{});
    Project::VideoClip clip;
    clip.panZoom = Effects::PanZoomPath{{0, 0, 0.5, 1}, {0.5, 0, 0.5, 1}, Effects::Easing::Linear};
    auto halves = uniformPicture(16, 8, 50);
    for (int y = 0; y < 8; ++y)
        for (int x = 8; x < 16; ++x)
            setSample(halves, 0, x, y, 200);
    const auto source = [&]() -> const Velmor::AV::Frame& { return halves; };
    EXPECT_EQ(sampleAt(painter.paint(clip, 0, source, 0), 0, 4, 4), 50);
    EXPECT_EQ(sampleAt(painter.paint(clip, 0, source, 1), 0, 4, 4), 200);
}

} // namespace
