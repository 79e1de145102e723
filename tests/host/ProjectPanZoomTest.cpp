#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/BrightSpot.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::easeInOut;
using EditorService::Testing::HostRun;
using EditorService::Testing::placedAt;
using EditorService::Testing::rmsDistance;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::shownAt;
using EditorService::Testing::ShownRect;
using EditorService::Testing::spotCentres;
using EditorService::Testing::SpotPoint;
using EditorService::Testing::ToolRun;
using EditorService::Testing::writeFile;

namespace {

constexpr int stillWidth = 640;
constexpr int stillHeight = 360;
constexpr int outputWidth = 320;
constexpr int outputHeight = 180;
// 50 frames at 25 a second.
constexpr int frames = 50;
const ShownRect from{0.3, 0.3, 0.5, 0.5};
const ShownRect to{0.35, 0.32, 0.45, 0.45};

class ProjectPanZoomTest : public testing::Test {
protected:
    QString path(const QString& name) const { return directory.filePath(name); }

    void tool(const QString& program, const QStringList& arguments) {
        const ToolRun run = runTool(program, arguments);
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    }

    // A soft bright disc (a Gaussian of 3 pixels) on a dark ground, off the pixel grid.
    void makeStill() {
        tool("ffmpeg", {"-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                        QStringLiteral("color=black:size=%1x%2,format=gray,"
                                       "geq=lum='16+219*exp(-((X-300.3)^2+(Y-170.6)^2)/18)'")
                            .arg(stillWidth)
                            .arg(stillHeight),
                        "-frames:v", "1", path("still.png")});
    }

    // The frames of a picture or video file as 8-bit grey, decoded by ffmpeg.
    QByteArray greyFrames(const QString& file) {
        const QString raw = path(QFileInfo(file).completeBaseName() + ".grey");
        tool("ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", file, "-f", "rawvideo", "-pix_fmt",
                        "gray", raw});
        QFile read(raw);
        EXPECT_TRUE(read.open(QIODevice::ReadOnly));
        return read.readAll();
    }

    QTemporaryDir directory;
};

// The eased path computed here, apart from the renderer: frame n shows the rectangle at n / 50
// of the move, eased in and out, and the disc's centre follows it. Encoded at a high rate, so
// that the encoder's loss moves no centre by a measurable fraction of a pixel.
TEST_F(ProjectPanZoomTest, APanAndZoomMovesAFeatureAlongItsEasedPathBelowATenthOfAPixel) {
    makeStill();
    const std::vector<SpotPoint> still =
        spotCentres(greyFrames(path("still.png")), stillWidth, stillHeight);
    ASSERT_EQ(still.size(), 1u);
    const QString project = writeFile(path("pan.json"), R"({"reelsmith_project": 1,
      "output": {"width": 320, "height": 180, "frame_rate": "25/1"},
      "tracks": [{"type": "video", "clips": [
        {"source": "still.png", "duration_ms": 2000,
         "pan_zoom": {"from": [0.3, 0.3, 0.5, 0.5], "to": [0.35, 0.32, 0.45, 0.45],
                      "easing": "ease-in-out"}}]}]})");
    const HostRun run = runHost(
        {"export", project, "--output=" + path("pan.mp4"), "--preset-video-bitrate=8000000"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();

    const std::vector<SpotPoint> tracked =
        spotCentres(greyFrames(path("pan.mp4")), outputWidth, outputHeight);
    ASSERT_EQ(tracked.size(), std::size_t(frames));
    std::vector<SpotPoint> eased;
    for (int frame = 0; frame < frames; ++frame)
        eased.push_back(placedAt(still[0], stillWidth, stillHeight,
                                 shownAt(from, to, easeInOut(double(frame) / frames)), outputWidth,
                                 outputHeight));
    EXPECT_LT(rmsDistance(tracked, eased), 0.1);
    // And it does move: over 20 pixels from its start to its end.
    EXPECT_GT(eased.front().x - eased.back().x, 20);
}

} // namespace
