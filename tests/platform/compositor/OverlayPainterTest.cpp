#include "platform/compositor/OverlayPainter.h"
#include "tests/platform/effects/Pictures.h"

#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Composition::OverlayPainter;

namespace {

Project::OverlayClip fading(std::int64_t in, std::int64_t out) {
    Project::OverlayClip clip;
    clip.lengthMs = 1000;
    clip.fadeInMs = in;
    clip.fadeOutMs = out;
    return clip;
}

TEST(OverlayPainterTest, FadesRiseFromTheStartAndFallToTheEnd) {
    EXPECT_DOUBLE_EQ(OverlayPainter::fadeShare(fading(0, 0), 0), 1);
    EXPECT_DOUBLE_EQ(OverlayPainter::fadeShare(fading(200, 0), 50), 0.25);
    EXPECT_DOUBLE_EQ(OverlayPainter::fadeShare(fading(0, 400), 900), 0.25);
    EXPECT_DOUBLE_EQ(OverlayPainter::fadeShare(fading(800, 800), 500), 0.625);
    EXPECT_DOUBLE_EQ(OverlayPainter::fadeShare(fading(200, 200), 1000), 0);
}

TEST(OverlayPainterTest, AVideosPicturesArePlacedFrameByFrame) {
    OverlayPainter painter(Velmor::AV::Size{16, 16});
    Project::OverlayClip clip;
    clip.kind = Project::OverlayClip::Kind::Video;
    clip.lengthMs = 1000;
    clip.rect = {0, 0, 0.5, 0.5};
    auto target = uniformPicture(16, 16, 16);
    int asked = 0;
    const auto first = uniformPicture(8, 8, 100);
    const auto second = uniformPicture(8, 8, 200);
    painter.paint(
        clip, 0, [&]() -> const Velmor::AV::Frame& { return ++asked == 1 ? first : second; }, 0,
        target);
    EXPECT_EQ(sampleAt(target, 0, 3, 3), 100);
    painter.paint(
        clip, 0, [&]() -> const Velmor::AV::Frame& { return ++asked == 1 ? first : second; }, 40,
        target);
    EXPECT_EQ(sampleAt(target, 0, 3, 3), 200);
    EXPECT_EQ(sampleAt(target, 0, 12, 12), 16);
}

TEST(OverlayPainterTest, AnInvisibleClipAsksForNoPicture) {
    OverlayPainter painter(Velmor::AV::Size{16, 16});
    Project::OverlayClip clip = fading(100, 0);
    clip.kind = Project::OverlayClip::Kind::Picture;
    auto target = uniformPicture(16, 16, 16);
    bool asked = false;
    const auto picture = uniformPicture(8, 8, 100);
    painter.paint(
        clip, 0,
        [&]() -> const Velmor::AV::Frame& {
            asked = true;
            return picture;
        },
        0, target);
    EXPECT_FALSE(asked);
}

} // namespace
