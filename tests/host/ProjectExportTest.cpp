#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::psnr;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;
using EditorService::Testing::writeFile;
using nlohmann::json;

namespace {

// A cut of a video, a fade into a panned still, a title over both and a looped tone under
// them, ducked under the video's sound: 1000 + 800 - 400 ms, 35 frames at 25 per second.
std::string composedProject(int width = 160) {
    const std::string media = MEDIA_FIXTURES_DIR;
    return R"({"reelsmith_project": 1,
      "output": {"width": )"
           + std::to_string(width) + R"(, "height": 120, "frame_rate": "25/1"},
      "tracks": [
        {"type": "video", "clips": [
          {"source": ")"
           + media + R"(/h264_aac.mp4", "in_ms": 200, "out_ms": 1200},
          {"source": ")"
           + media + R"(/still.png", "duration_ms": 800,
           "pan_zoom": {"from": [0, 0, 1, 1], "to": [0.25, 0.25, 0.5, 0.5]},
           "transition": {"type": "fade", "duration_ms": 400}}]},
        {"type": "overlay", "clips": [{"text": "Frame", "start_ms": 100, "duration_ms": 1000}]},
        {"type": "audio", "clips": [{"source": ")"
           + media + R"(/tone.wav", "volume_db": -6, "loop": true}],
         "duck": {"amount_db": -12}}]})";
}

class ProjectExportTest : public testing::Test {
protected:
    QString path(const QString& name) const { return directory.filePath(name); }

    QString project(const std::string& text = composedProject()) {
        return writeFile(path("edit.json"), QByteArray::fromStdString(text));
    }

    HostRun host(const QStringList& arguments) {
        const HostRun run = runHost(arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return run;
    }

    // What ffprobe says of a file: its streams and its duration in milliseconds.
    json ffprobe(const QString& file) {
        const ToolRun run = runTool("ffprobe", {"-v", "error", "-show_entries",
                                                "stream=codec_type,codec_name,width,height,"
                                                "sample_rate,channels:format=duration",
                                                "-of", "json", file});
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return json::parse(run.output.toStdString());
    }

    // Frame `index` of a file decoded by ffmpeg, as packed RGB.
    QByteArray decodedFrame(const QString& file, int index) {
        const QString picture = path(QStringLiteral("frame-%1.png").arg(index));
        const ToolRun run = runTool("ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", file, "-vf",
                                               QStringLiteral("select=eq(n\\,%1)").arg(index),
                                               "-frames:v", "1", picture});
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return rgbPixels(picture);
    }

    QStringList files() const { return QDir(directory.path()).entryList(QDir::Files); }

    QTemporaryDir directory;
};

TEST_F(ProjectExportTest, AProjectExportsAsItsOutputSizeWithItsMix) {
    const QString edit = project();
    const HostRun run = host({"export", edit, "--output=" + path("out.mp4")});
    const json probed = ffprobe(path("out.mp4"));
    const json& streams = probed.at("streams");
    ASSERT_EQ(streams.size(), 2u);
    EXPECT_EQ(streams[0].at("codec_name"), "h264");
    EXPECT_EQ(streams[0].at("width"), 160);
    EXPECT_EQ(streams[0].at("height"), 120);
    EXPECT_EQ(streams[1].at("codec_name"), "aac");
    EXPECT_EQ(streams[1].at("sample_rate"), "48000");
    EXPECT_EQ(streams[1].at("channels"), 2);
    // The sum of the clips less the transition, within one frame.
    const double seconds = std::stod(probed.at("format").at("duration").get<std::string>());
    EXPECT_NEAR(seconds, 1.4, 0.04);
}

TEST_F(ProjectExportTest, TheOriginalSizeOfAnOddProjectFailsAsThePresetSays) {
    const QString edit = project(composedProject(161));
    const HostRun run =
        runHost({"export", edit, "--output=" + path("out.mp4"), "--preset-frame-size=original"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors), QList<QByteArray>{"Frame size must be even."});
    EXPECT_EQ(files(), QStringList{"edit.json"});
}

TEST_F(ProjectExportTest, ProbeDescribesTheProjectAsItsExport) {
    const QString edit = project();
    const HostRun run = host({"probe", edit});
    const json probed = json::parse(run.output.toStdString()).at("probe");
    EXPECT_EQ(probed.at("duration_ms"), 1400);
    const json& streams = probed.at("streams");
    ASSERT_EQ(streams.size(), 2u);
    EXPECT_EQ(streams[0].at("type"), "video");
    EXPECT_EQ(streams[0].at("width"), 160);
    EXPECT_EQ(streams[0].at("height"), 120);
    EXPECT_EQ(streams[0].at("frame_rate"), "25/1");
    EXPECT_EQ(streams[1].at("type"), "audio");
    EXPECT_EQ(streams[1].at("sample_rate"), 48000);
    EXPECT_EQ(streams[1].at("channels"), 2);
}

// The picture at a time depends on the project and the time alone: frame 15 (600 ms, in the
// fade, under the title, in the pan) of the whole export, the first frame of an export that
// begins there, and a thumbnail there are one picture, up to the encoder's loss (made small by
// a high bit rate, so that a neighbouring frame could not pass for it).
TEST_F(ProjectExportTest, ARangeAThumbnailAndTheWholeExportGiveOneFrameAtATime) {
    const QString edit = project();
    const QString rate = "--preset-video-bitrate=8000000";
    host({"export", edit, "--output=" + path("whole.mp4"), rate});
    host({"export", edit, "--output=" + path("range.mp4"), "--range=600:1000", rate});
    const HostRun shot = host({"thumbnail", edit, "--output=" + path("at.png"), "--at=600"});
    EXPECT_EQ(json::parse(shot.output.toStdString()).at("thumbnail").at("frame_ms"), 600);

    const QByteArray whole = decodedFrame(path("whole.mp4"), 15);
    const QByteArray range = decodedFrame(path("range.mp4"), 0);
    const QByteArray thumbnail = rgbPixels(path("at.png"));
    ASSERT_EQ(whole.size(), 160 * 120 * 3);
    EXPECT_GT(psnr(range, whole), 45);
    EXPECT_GT(psnr(thumbnail, whole), 45);
    // And not a neighbour: the fade and the pan move the picture from frame to frame.
    EXPECT_LT(psnr(thumbnail, decodedFrame(path("whole.mp4"), 14)), 40);
}

TEST_F(ProjectExportTest, AProjectThatNeedsEffectsFailsWithoutTheirPlugin) {
    const QString edit = project();
    const QByteArray message =
        "Can not render " + edit.toUtf8() + ": the plug-in EffectsFF is disabled";
    for (const QStringList& command :
         {QStringList{"export", edit, "--output=" + path("out.mp4")},
          QStringList{"thumbnail", edit, "--output=" + path("out.png")}}) {
        const HostRun run = runHost(QStringList{"--disable-plugin=EffectsFF"} + command);
        EXPECT_EQ(run.exitCode, 1) << command.join(' ').toStdString();
        EXPECT_EQ(errorLinesBesidesTheLog(run.errors), QList<QByteArray>{message});
    }
    EXPECT_EQ(files(), QStringList{"edit.json"});
}

} // namespace
