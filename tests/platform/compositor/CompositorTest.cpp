#include "platform/compositor/Compositor.h"
#include "platform/project/EditValidator.h"
#include "tests/platform/compositor/FakeReaders.h"
#include "tests/platform/effects/Pictures.h"
#include "tests/platform/project/FakeProber.h"
#include "tests/platform/project/ProjectText.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Composition::Compositor;

namespace {

class CompositorTest : public testing::Test {
protected:
    Compositor compositor(const std::string& text) {
        return Compositor(Project::validateEdit(readText(text), prober), readers);
    }

    // Small outputs keep the tests cheap.
    static std::string small(const std::string& more = "") {
        return R"("output": {"width": 64, "height": 36, "frame_rate": "25/1"}, )" + more;
    }

    FakeProber prober;
    std::shared_ptr<FakeReaders> readers = std::make_shared<FakeReaders>();
};

TEST_F(CompositorTest, TheProjectLastsItsClipsLessItsTransitionsInFrames) {
    auto composed = compositor(projectWithClips(
        R"({"color": "#000000", "duration_ms": 1000},
           {"color": "#ffffff", "duration_ms": 1010, "transition": {"type": "fade", "duration_ms": 400}})",
        small()));
    EXPECT_EQ(composed.frameCount(), 41);
    EXPECT_EQ(composed.size(), (Velmor::AV::Size{64, 36}));
    EXPECT_THAT([&] { composed.frame(41); },
                FailedWith<std::out_of_range>("Frame 41 is not in the project (41 frames)"));
}

TEST_F(CompositorTest, AFrameIsTimedByItsIndex) {
    auto composed = compositor(projectWithClips(R"({"color": "#203040"})", small()));
    const auto picture = composed.frame(7);
    EXPECT_EQ(picture.timestamp(), 7);
    EXPECT_EQ(picture.format(), Effects::composingFormat());
    EXPECT_EQ(sampleAt(picture, 0, 10, 10), Effects::toYuv(Effects::Colour{0x20, 0x30, 0x40}).y);
}

TEST_F(CompositorTest, AVideoClipShowsItsSourceFromItsInPoint) {
    auto composed = compositor(
        projectWithClips(R"({"source": "a.mp4", "in_ms": 1000, "out_ms": 2000})", small()));
    EXPECT_EQ(composed.frameCount(), 25);
    EXPECT_EQ(sampleAt(composed.frame(0), 0, 5, 5), FakeReaders::lumaOf(1000));
    EXPECT_EQ(sampleAt(composed.frame(12), 0, 5, 5), FakeReaders::lumaOf(1480));
    EXPECT_EQ(readers->log->times.back(), 1480);
}

TEST_F(CompositorTest, AFittedClipHasBarsOfTheBackground) {
    readers->sizes["a.mp4"] = {32, 36};
    const std::string output =
        R"("output": {"width": 64, "height": 36, "background": "#ff0000"}, )";
    auto fitted = compositor(projectWithClips(R"({"source": "a.mp4", "in_ms": 500})", output));
    const auto picture = fitted.frame(0);
    EXPECT_EQ(sampleAt(picture, 0, 5, 5), Effects::toYuv(Effects::Colour{255, 0, 0}).y);
    EXPECT_EQ(sampleAt(picture, 0, 32, 5), FakeReaders::lumaOf(500));
    EXPECT_EQ(sampleAt(picture, 0, 60, 30), Effects::toYuv(Effects::Colour{255, 0, 0}).y);
    auto filled =
        compositor(projectWithClips(R"({"source": "a.mp4", "in_ms": 500, "fit": "Fill"})", output));
    EXPECT_EQ(sampleAt(filled.frame(0), 0, 5, 5), FakeReaders::lumaOf(500));
}

TEST_F(CompositorTest, ATransitionBlendsTheClipsWhereTheyOverlap) {
    auto composed = compositor(projectWithClips(
        R"({"color": "#000000", "duration_ms": 1000},
           {"color": "#ffffff", "duration_ms": 1000, "transition": {"type": "fade", "duration_ms": 400}})",
        small()));
    // The fade runs over frames 15 to 24; frame 20 is half way.
    EXPECT_EQ(sampleAt(composed.frame(14), 0, 0, 0), 16);
    EXPECT_EQ(sampleAt(composed.frame(20), 0, 0, 0), (16 + 235 + 1) / 2);
    EXPECT_EQ(sampleAt(composed.frame(25), 0, 0, 0), 235);
}

TEST_F(CompositorTest, ReadersOpenWhileTheirClipShowsAndGoAfter) {
    auto composed = compositor(projectWithClips(
        R"({"source": "a.mp4", "out_ms": 1000}, {"source": "a.mp4", "out_ms": 1000, "transition": {"type": "dissolve", "duration_ms": 200}})",
        small()));
    composed.frame(0);
    EXPECT_EQ(composed.openReaders(), 1);
    composed.frame(21);
    EXPECT_EQ(composed.openReaders(), 2);
    composed.frame(30);
    EXPECT_EQ(composed.openReaders(), 1);
    EXPECT_EQ(readers->log->opened, 2);
    EXPECT_EQ(readers->log->open, 1);
}

TEST_F(CompositorTest, ATitleShowsOnlyOverItsSpanAndFadesIn) {
    auto composed = compositor(projectWithTracks(
        R"({"type": "video", "clips": [{"color": "#000000", "duration_ms": 2000}]},
           {"type": "overlay", "clips": [{"text": "Hi", "start_ms": 400, "duration_ms": 800,
              "style": {"size": 20, "position": "center", "fade_in_ms": 400}}]})",
        small()));
    const auto brightest = [&](std::int64_t frame) {
        const auto picture = composed.frame(frame);
        int highest = 0;
        for (int y = 0; y < 36; ++y)
            for (int x = 0; x < 64; ++x)
                highest = std::max<int>(highest, sampleAt(picture, 0, x, y));
        return highest;
    };
    EXPECT_EQ(brightest(9), 16);
    EXPECT_GT(brightest(20), 230);
    EXPECT_NEAR(brightest(15), 16 + (235 - 16) / 2, 12);
    EXPECT_EQ(brightest(30), 16);
}

TEST_F(CompositorTest, AnImageOverlayIsPlacedInItsRectangleWithItsOpacity) {
    readers->sizes["logo.png"] = {16, 16};
    auto composed = compositor(projectWithTracks(
        R"({"type": "video", "clips": [{"color": "#ffffff", "duration_ms": 1000}]},
           {"type": "overlay", "clips": [{"source": "logo.png", "rect": [0.5, 0, 0.5, 0.5], "opacity": 0.5}]})",
        small()));
    const auto picture = composed.frame(3);
    // The square fits the 32x18 rectangle as 18x18 in its middle, from x 38 (even) to 55.
    EXPECT_EQ(sampleAt(picture, 0, 36, 5), 235);
    EXPECT_EQ(sampleAt(picture, 0, 38, 5), 126);
    EXPECT_EQ(sampleAt(picture, 0, 55, 17), 126);
    EXPECT_EQ(sampleAt(picture, 0, 56, 5), 235);
    EXPECT_EQ(sampleAt(picture, 0, 45, 30), 235);
    EXPECT_EQ(readers->log->times, (std::vector<std::int64_t>{0}));
}

TEST_F(CompositorTest, AStillIsFittedOnceAndPannedEveryFrame) {
    auto still =
        compositor(projectWithClips(R"({"source": "photo.jpg", "duration_ms": 400})", small()));
    for (int frame = 0; frame < 10; ++frame)
        still.frame(frame);
    EXPECT_EQ(readers->log->times.size(), 1u);
    auto panned = compositor(projectWithClips(
        R"({"source": "photo.jpg", "duration_ms": 400, "pan_zoom": {"to": [0.5, 0.5, 0.5, 0.5]}})",
        small()));
    for (int frame = 0; frame < 10; ++frame)
        panned.frame(frame);
    EXPECT_EQ(readers->log->times.size(), 11u);
}

} // namespace
