#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::psnr;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using nlohmann::json;

// A named pipe as the input: read forward, once, by whichever service takes it; one that
// nobody writes to yet is waited for, as ffmpeg does, within the command's time limit.
namespace {

class PipeInputTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0); }

    static QString fixture(const char* name) { return QString::fromStdString(mediaFixture(name)); }

    // Writes a file into the pipe from another process, after `delay` seconds.
    void feed(const char* name, const char* delay = "0") {
        writer.start("sh", {"-c", QStringLiteral("sleep %1; cat \"$0\" > \"$1\"").arg(delay),
                            fixture(name), pipe});
        ASSERT_TRUE(writer.waitForStarted());
    }

    void TearDown() override {
        if (writer.state() != QProcess::NotRunning && !writer.waitForFinished(5000))
            writer.kill();
    }

    QTemporaryDir directory;
    const QString pipe = directory.filePath("pipe");
    QProcess writer;
};

TEST_F(PipeInputTest, APipeNobodyWritesToIsWaitedForUntilTheTimeLimit) {
    const HostRun run = runHost({"-q", "--timeout=1", "probe", pipe});
    EXPECT_EQ(run.exitCode, 124);
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors),
              QList<QByteArray>{("Command timed out after 1 s: probe --path=" + pipe).toUtf8()});
}

TEST_F(PipeInputTest, AnExportOfAPipeNobodyWritesToEndsAtTheTimeLimitAndLeavesNoFile) {
    const HostRun run =
        runHost({"-q", "--timeout=1", "export", pipe, "--output=" + directory.filePath("e.mp4")});
    EXPECT_EQ(run.exitCode, 124);
    EXPECT_TRUE(run.errors.contains("Command timed out after 1 s: export"))
        << run.errors.toStdString();
    EXPECT_EQ(QDir(directory.path()).entryList(QDir::Files | QDir::System), QStringList{"pipe"});
}

TEST_F(PipeInputTest, AWriterThatComesLaterIsRead) {
    feed("open_gop.ts", "0.3");
    const HostRun run = runHost({"-q", "probe", pipe});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const json probe = json::parse(run.outputLines().last().toStdString()).at("probe");
    EXPECT_EQ(probe.at("format"), "mpegts");
    EXPECT_EQ(probe.at("streams").at(0).at("width"), 160);
}

TEST_F(PipeInputTest, AThumbnailDecodesForwardToTheFrameOnScreen) {
    const QString fromFile = directory.filePath("file.png");
    const HostRun reference =
        runHost({"-q", "thumbnail", fixture("open_gop.ts"), "--output=" + fromFile, "--at=1000"});
    ASSERT_EQ(reference.exitCode, 0) << reference.errors.toStdString();
    feed("open_gop.ts");
    const QString fromPipe = directory.filePath("pipe.png");
    const HostRun run = runHost({"-q", "thumbnail", pipe, "--output=" + fromPipe, "--at=1000"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(
        json::parse(run.outputLines().last().toStdString()).at("thumbnail").at("frame_ms"),
        json::parse(reference.outputLines().last().toStdString()).at("thumbnail").at("frame_ms"));
    EXPECT_GT(psnr(rgbPixels(fromPipe), rgbPixels(fromFile)), 60);
}

TEST_F(PipeInputTest, AnExportReadsThePipeOnceAndKeepsEveryFrameAndTheSound) {
    feed("open_gop.ts");
    const QString output = directory.filePath("e.mp4");
    const HostRun run = runHost({"-q", "export", pipe, "--output=" + output});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const auto probed = runTool(
        "ffprobe", {"-v", "error", "-count_packets", "-show_streams", "-of", "json", output});
    const json streams = json::parse(probed.output.toStdString()).at("streams");
    ASSERT_EQ(streams.size(), 2u);
    EXPECT_EQ(streams.at(0).at("nb_read_packets"), "75");
    EXPECT_EQ(streams.at(0).at("width"), 160);
    EXPECT_EQ(streams.at(1).at("codec_name"), "aac");
}

} // namespace
