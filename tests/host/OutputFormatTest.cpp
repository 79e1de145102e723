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
using EditorService::Testing::writeFile;
using nlohmann::json;

// What a file is written as follows its name: an export's container, a thumbnail's picture
// format. Each output is read back by ffprobe.
namespace {

// A project of one clip, so that projects are held to the same names.
QByteArray oneClipProject() {
    const std::string media = MEDIA_FIXTURES_DIR;
    return QByteArray::fromStdString(
        R"({"reelsmith_project": 1, "output": {"width": 160, "height": 90, "frame_rate": "25/1"},
            "tracks": [{"type": "video", "clips": [{"source": ")"
        + media + R"(/rotate180.mp4"}]}]})");
}

class OutputFormatTest : public testing::Test {
protected:
    static QString fixture(const char* name) { return QString::fromStdString(mediaFixture(name)); }
    QString path(const QString& name) const { return directory.filePath(name); }
    QStringList files() const { return QDir(directory.path()).entryList(QDir::Files); }

    HostRun succeeded(const QStringList& arguments) const {
        const HostRun run = runHost(QStringList{"-q"} + arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return run;
    }

    // The one line a run failed with, besides the log.
    static QList<QByteArray> failure(const QStringList& arguments) {
        const HostRun run = runHost(QStringList{"-q"} + arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_EQ(run.output, "");
        return errorLinesBesidesTheLog(run.errors);
    }

    // ffprobe's view of a file's format and first stream.
    static json probed(const QString& file) {
        const auto run = runTool(
            "ffprobe", {"-v", "error", "-show_format", "-show_streams", "-of", "json", file});
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return json::parse(run.output.toStdString());
    }

    QTemporaryDir directory;
};

struct Container {
    const char* output;
    const char* formatName;
    const char* brand; // empty for a container with none
    const char* tag;
};

class ExportContainerTest : public OutputFormatTest,
                            public testing::WithParamInterface<Container> {};

TEST_P(ExportContainerTest, WritesTheContainerItsExtensionNamesWithPlayableHevcTags) {
    const Container& wanted = GetParam();
    const QString output = path(wanted.output);
    succeeded({"export", fixture("rotate90.mp4"), "--output=" + output,
               "--preset-video-codec=CODEC_ID_HEVC"});
    const json written = probed(output);
    EXPECT_EQ(written.at("format").at("format_name"), wanted.formatName);
    const json tags = written.at("format").value("tags", json::object());
    EXPECT_EQ(tags.value("major_brand", ""), wanted.brand);
    const json& video = written.at("streams").at(0);
    EXPECT_EQ(video.at("codec_name"), "hevc");
    EXPECT_EQ(video.at("codec_tag_string"), wanted.tag);
    EXPECT_EQ(video.at("width"), 90);
    EXPECT_EQ(video.at("height"), 160);
}

INSTANTIATE_TEST_SUITE_P(
    Extensions, ExportContainerTest,
    testing::Values(Container{"e.mov", "mov,mp4,m4a,3gp,3g2,mj2", "qt  ", "hvc1"},
                    Container{"e.M4V", "mov,mp4,m4a,3gp,3g2,mj2", "isom", "hvc1"},
                    Container{"e.MP4", "mov,mp4,m4a,3gp,3g2,mj2", "isom", "hvc1"},
                    Container{"e.mkv", "matroska,webm", "", "[0][0][0][0]"},
                    Container{"e", "mov,mp4,m4a,3gp,3g2,mj2", "isom", "hvc1"}));

TEST_F(OutputFormatTest, AnExportToAnotherExtensionFailsBeforeTheInputIsRead) {
    const QString missing = path("missing.mp4");
    for (const char* name : {"e.avi", "e.WebM", "e.mp4.part"}) {
        SCOPED_TRACE(name);
        const QString extension = QString(name).section('.', -1);
        EXPECT_EQ(failure({"export", missing, "--output=" + path(name)}),
                  QList<QByteArray>{
                      ("Can not write " + extension + " files: the preset writes mp4").toUtf8()});
    }
    EXPECT_EQ(files(), QStringList());
}

TEST_F(OutputFormatTest, AProjectExportIsHeldToTheSameNames) {
    const QString project = writeFile(path("edit.json"), oneClipProject());
    EXPECT_EQ(failure({"export", project, "--output=" + path("e.avi")}),
              QList<QByteArray>{"Can not write avi files: the preset writes mp4"});
    succeeded({"export", project, "--output=" + path("e.mkv")});
    EXPECT_EQ(probed(path("e.mkv")).at("format").at("format_name"), "matroska,webm");
}

TEST_F(OutputFormatTest, AThumbnailIsJpegForJpgAndJpegInAnyCase) {
    const QString reference = path("reference.png");
    runTool("ffmpeg", {"-nostdin", "-v", "error", "-y", "-ss", "0.48", "-i",
                       fixture("h264_aac.mp4"), "-frames:v", "1", reference});
    for (const char* name : {"t.jpg", "t.JPEG"}) {
        SCOPED_TRACE(name);
        succeeded({"thumbnail", fixture("h264_aac.mp4"), "--output=" + path(name), "--at=500"});
        const json written = probed(path(name));
        EXPECT_EQ(written.at("streams").at(0).at("codec_name"), "mjpeg");
        EXPECT_GT(psnr(rgbPixels(path(name)), rgbPixels(reference)), 35);
    }
}

TEST_F(OutputFormatTest, AThumbnailToAnotherExtensionFailsBeforeDecodingAndLeavesNoFile) {
    const QString missing = path("missing.mp4");
    for (const char* name : {"t.gif", "t.webp", "t.png.tmp"}) {
        SCOPED_TRACE(name);
        const QString extension = QString(name).section('.', -1);
        EXPECT_EQ(
            failure({"thumbnail", missing, "--output=" + path(name)}),
            QList<QByteArray>{
                ("Can not write " + extension + " files: a thumbnail writes png or jpg").toUtf8()});
    }
    EXPECT_EQ(files(), QStringList());
}

TEST_F(OutputFormatTest, AProjectThumbnailIsJpegForJpgToo) {
    const QString project = writeFile(path("edit.json"), oneClipProject());
    succeeded({"thumbnail", project, "--output=" + path("p.jpg"), "--at=200"});
    EXPECT_EQ(probed(path("p.jpg")).at("streams").at(0).at("codec_name"), "mjpeg");
    EXPECT_EQ(failure({"thumbnail", project, "--output=" + path("p.bmp")}),
              QList<QByteArray>{"Can not write bmp files: a thumbnail writes png or jpg"});
}

} // namespace
