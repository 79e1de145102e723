#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <array>
#include <gtest/gtest.h>

using EditorService::Testing::HostRun;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;
using EditorService::Testing::writeFile;

namespace {

constexpr int width = 160;
constexpr int height = 120;

// Red, a fade into blue (600 to 1000 ms), a wipe into green (1200 to 1600 ms), 2200 ms in all;
// a white title over the red, and over the green the logo (opaque red on its left half,
// transparent on its right) fitted into the rectangle [0.5, 0.5, 0.25, 0.25]: a 40x30 box at
// (80, 60) that its 2:1 picture fills as 40x20 at about (80, 65).
std::string pictureProject() {
    const std::string media = MEDIA_FIXTURES_DIR;
    return R"({"reelsmith_project": 1,
      "output": {"width": 160, "height": 120, "frame_rate": "25/1"},
      "tracks": [
        {"type": "video", "clips": [
          {"color": "#ff0000", "duration_ms": 1000},
          {"color": "#0000ff", "duration_ms": 1000,
           "transition": {"type": "fade", "duration_ms": 400}},
          {"color": "#00ff00", "duration_ms": 1000,
           "transition": {"type": "wipe-left", "duration_ms": 400}}]},
        {"type": "overlay", "clips": [
          {"text": "HH", "start_ms": 0, "duration_ms": 500,
           "style": {"size": 60, "position": "center", "color": "#ffffff"}},
          {"source": ")"
           + media + R"(/logo_alpha.png", "start_ms": 1700, "rect": [0.5, 0.5, 0.25, 0.25]}]}]})";
}

using Colour = std::array<int, 3>;

// Decoded frames of the project's export, read back by ffmpeg.
class ProjectPicturesTest : public testing::Test {
protected:
    void SetUp() override {
        const QString edit =
            writeFile(directory.filePath("edit.json"), QByteArray::fromStdString(pictureProject()));
        const HostRun run = runHost({"export", edit, "--output=" + directory.filePath("out.mp4"),
                                     "--preset-video-bitrate=8000000"});
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    }

    QByteArray frame(int index) {
        const QString picture = directory.filePath(QStringLiteral("frame-%1.png").arg(index));
        const ToolRun run = runTool(
            "ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", directory.filePath("out.mp4"), "-vf",
                       QStringLiteral("select=eq(n\\,%1)").arg(index), "-frames:v", "1", picture});
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        const QByteArray pixels = rgbPixels(picture);
        EXPECT_EQ(pixels.size(), width * height * 3);
        return pixels;
    }

    static Colour at(const QByteArray& pixels, int x, int y) {
        const int offset = (y * width + x) * 3;
        return {static_cast<unsigned char>(pixels[offset]),
                static_cast<unsigned char>(pixels[offset + 1]),
                static_cast<unsigned char>(pixels[offset + 2])};
    }

    // Within the loss of the conversions to yuv420p and back and of the encoder.
    static void expectNear(const Colour& actual, const Colour& expected, const char* what) {
        for (int channel = 0; channel < 3; ++channel)
            EXPECT_NEAR(actual[channel], expected[channel], 20) << what << ", channel " << channel;
    }

    QTemporaryDir directory;
};

// Frame 20 starts at 800 ms, halfway through the fade.
TEST_F(ProjectPicturesTest, AFadeBlendsTheTwoClips) {
    const QByteArray pixels = frame(20);
    expectNear(at(pixels, 10, 10), {128, 0, 128}, "halfway from red to blue");
}

// Frame 35 starts at 1400 ms, halfway through the wipe: the edge stands at x = 80, green (the
// incoming clip) on its right.
TEST_F(ProjectPicturesTest, AWipesEdgeStandsWhereItsProgressSays) {
    const QByteArray pixels = frame(35);
    expectNear(at(pixels, 74, 60), {0, 0, 255}, "left of the edge");
    expectNear(at(pixels, 86, 60), {0, 255, 0}, "right of the edge");
}

// Frame 5 (200 ms): the title's white strokes in the middle, the red clip around it.
TEST_F(ProjectPicturesTest, ATitlesPixelsAreDrawnWhereItStands) {
    const QByteArray pixels = frame(5);
    int white = 0;
    for (int y = 40; y < 80; ++y)
        for (int x = 40; x < 120; ++x) {
            const Colour colour = at(pixels, x, y);
            white += colour[0] > 220 && colour[1] > 220 && colour[2] > 220;
        }
    EXPECT_GT(white, 100);
    expectNear(at(pixels, 5, 5), {255, 0, 0}, "the clip around the title");
    expectNear(at(pixels, 5, 115), {255, 0, 0}, "the clip around the title");
}

// Frame 50 (2000 ms): the logo's opaque half in its fitted place, the green through its
// transparent half and around it.
TEST_F(ProjectPicturesTest, AFittedOverlayStandsInItsRectangle) {
    const QByteArray pixels = frame(50);
    expectNear(at(pixels, 90, 75), {255, 0, 0}, "the logo's opaque half");
    expectNear(at(pixels, 110, 75), {0, 255, 0}, "through the logo's transparent half");
    expectNear(at(pixels, 90, 62), {0, 255, 0}, "above the fitted logo, inside its box");
    expectNear(at(pixels, 70, 75), {0, 255, 0}, "left of the box");
}

} // namespace
