#include "platform/av/Plane.h"
#include "platform/compositor/Compositor.h"
#include "platform/compositor/StreamFrameReaders.h"
#include "platform/editorlogic/ExecutorFactory.h"
#include "platform/editorlogic/StreamProcessorFactory.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/project/EditReader.h"
#include "platform/project/EditValidator.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/MediaFixtures.h"

#include <QCryptographicHash>
#include <QProcess>
#include <cmath>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using Composition::Compositor;

namespace {

QByteArray pixelsOf(const Velmor::AV::Frame& picture) {
    QByteArray bytes;
    for (int index = 0; index < 3; ++index) {
        const auto plane = Velmor::AV::planeOf(picture, index);
        for (int y = 0; y < plane.height; ++y)
            bytes.append(reinterpret_cast<const char*>(plane.row(y)), plane.width);
    }
    return bytes;
}

// The edit of the fixtures: a cut of a video, a dissolve into a panned still, a wipe into a
// second video, a title and a picture over them.
std::string fixtureProject() {
    const std::string media = MEDIA_FIXTURES_DIR;
    return R"({"reelsmith_project": 1,
      "output": {"width": 160, "height": 120},
      "tracks": [
        {"type": "video", "clips": [
          {"source": ")"
           + media + R"(/h264_aac.mp4", "in_ms": 300, "out_ms": 1900},
          {"source": ")"
           + media + R"(/still.png", "duration_ms": 800,
           "pan_zoom": {"from": [0, 0, 1, 1], "to": [0.3, 0.2, 0.5, 0.5], "easing": "ease-out"},
           "transition": {"type": "dissolve", "duration_ms": 400}},
          {"source": ")"
           + media + R"(/clip.mov", "in_ms": 500, "fit": "Fill",
           "transition": {"type": "wipe-left", "duration_ms": 300}}]},
        {"type": "overlay", "clips": [
          {"text": "Frame pure", "start_ms": 200, "duration_ms": 1500, "style": {"fade_in_ms": 300}},
          {"source": ")"
           + media + R"(/logo_alpha.png", "rect": [0.7, 0.05, 0.25, 0.2], "opacity": 0.7}]}]})";
}

class CompositorMediaTest : public testing::Test {
protected:
    Compositor compositor() {
        Project::Edit edit = Project::validateEdit(
            Project::readEditFrom(fixtureProject(), "fixtures.json", Project::NoThemes()),
            Project::FileProber());
        return Compositor(std::move(edit),
                          std::make_shared<Composition::StreamFrameReaders>(provider));
    }

    RunningEngine engine;
    Core::ExecutorFactory executors;
    Core::StreamProcessorFactory processors;
    Media::StreamProvider provider{&executors, &executors, &processors, &processors, 0};
};

TEST_F(CompositorMediaTest, AFrameComposedAloneEqualsTheSameFrameOfARun) {
    auto run = compositor();
    // 1600 + 800 + 1500 ms less 700 ms of transitions: 3200 ms, 80 frames at 25 per second.
    ASSERT_EQ(run.frameCount(), 80);
    std::vector<QByteArray> sequential;
    for (std::int64_t frame = 0; frame < run.frameCount(); ++frame)
        sequential.push_back(pixelsOf(run.frame(frame)));
    // In transitions, in the pan, under the title's fade, backwards and forwards.
    for (const std::int64_t frame : {79, 33, 5, 62, 31, 0, 47, 46, 12}) {
        auto alone = compositor();
        EXPECT_EQ(pixelsOf(alone.frame(frame)), sequential[static_cast<std::size_t>(frame)])
            << "frame " << frame;
    }
    auto jumping = compositor();
    for (const std::int64_t frame : {60, 10, 61, 11, 35})
        EXPECT_EQ(pixelsOf(jumping.frame(frame)), sequential[static_cast<std::size_t>(frame)])
            << "frame " << frame;
}

// ffmpeg decodes the same source frame; the composed frame of a clip at its own size is that
// frame, untouched.
TEST_F(CompositorMediaTest, AClipAtItsOwnSizeIsItsDecodedFrame) {
    const std::string media = MEDIA_FIXTURES_DIR;
    const std::string text = R"({"reelsmith_project": 1, "tracks": [{"type": "video", "clips": [
        {"source": ")" + media
                             + R"(/h264_aac.mp4", "in_ms": 1000}]}]})";
    Compositor composed(
        Project::validateEdit(Project::readEditFrom(text, "own.json", Project::NoThemes()),
                              Project::FileProber()),
        std::make_shared<Composition::StreamFrameReaders>(provider));
    ASSERT_EQ(composed.size(), (Velmor::AV::Size{320, 240}));
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg",
                 {"-v", "error", "-i", QString::fromStdString(mediaFixture("h264_aac.mp4")), "-vf",
                  "select=eq(n\\,30)", "-frames:v", "1", "-f", "rawvideo", "-pix_fmt", "yuv420p",
                  "-"});
    ASSERT_TRUE(ffmpeg.waitForFinished(60000));
    const QByteArray decoded = ffmpeg.readAllStandardOutput();
    ASSERT_EQ(decoded.size(), 320 * 240 * 3 / 2);
    EXPECT_EQ(pixelsOf(composed.frame(5)), decoded);
}

} // namespace
