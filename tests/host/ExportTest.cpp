#include "tests/host/HostProcess.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runHost;
using EditorService::Testing::runHostOnATerminal;
using EditorService::Testing::signalHostWhen;
using EditorService::Testing::startHost;
using EditorService::Testing::TerminalRun;

namespace {

QString fixture(const std::string& name) {
    return QString::fromStdString(mediaFixture(name));
}

// What ffprobe, an independent reader, says of a file's streams: "codec_type codec_name
// width height" per stream, and the container's format name.
struct Probed {
    QStringList streams;
    QString format;
};

Probed ffprobe(const QString& path) {
    QProcess process;
    process.start("ffprobe", {"-v", "error", "-show_entries",
                              "stream=codec_type,codec_name,width,height:format=format_name", "-of",
                              "json", path});
    process.waitForFinished(60000);
    const auto value = nlohmann::json::parse(process.readAllStandardOutput().toStdString());
    Probed probed;
    for (const auto& stream : value.at("streams")) {
        QString line = QString::fromStdString(stream.value("codec_type", "")) + " "
                       + QString::fromStdString(stream.value("codec_name", ""));
        if (stream.contains("width"))
            line += QStringLiteral(" %1x%2")
                        .arg(stream.at("width").get<int>())
                        .arg(stream.at("height").get<int>());
        probed.streams.append(line);
    }
    probed.format = QString::fromStdString(value.at("format").value("format_name", ""));
    return probed;
}

std::vector<nlohmann::json> values(const HostRun& run) {
    std::vector<nlohmann::json> parsed;
    for (const QByteArray& line : run.outputLines())
        parsed.push_back(nlohmann::json::parse(line.toStdString()));
    return parsed;
}

std::vector<nlohmann::json> doneValues(const HostRun& run) {
    std::vector<nlohmann::json> done;
    for (const auto& value : values(run)) {
        if (value.contains("export") && value.at("export").value("done", false))
            done.push_back(value.at("export"));
    }
    return done;
}

// stderr without the command log.
QByteArray errorsBesidesTheLog(const QByteArray& errors) {
    QByteArray kept;
    for (const QByteArray& line : errors.split('\n')) {
        if (!line.isEmpty() && !line.contains("] Processing command: "))
            kept += line + '\n';
    }
    return kept;
}

class ExportTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(directory.isValid()); }

    QString path(const QString& name) const { return directory.filePath(name); }
    QStringList files() const {
        return QDir(directory.path()).entryList(QDir::Files | QDir::System, QDir::Name);
    }
    QString writeScript(const QByteArray& content) {
        const QString script = path("batch.reel");
        QFile file(script);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return script;
    }

    // Starts an export of a minute of video, waits for its first progress value, signals the
    // host and collects what it did.
    HostRun signalMidExport(const QStringList& arguments, int signal) {
        return signalHostWhen(
            arguments, [](const QByteArray& output) { return output.contains("\"progress\""); },
            signal);
    }

    QuietHostSanitizer quietSanitizer;
    QTemporaryDir directory;
};

} // namespace

TEST_F(ExportTest, A720pExportIsReadBackAsMp4WithH264At1280x720AndAac) {
    const HostRun run = runHost(
        {"export", fixture("h264_aac.mp4"), "--output=" + path("out.mp4"), "--preset=720p"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const Probed probed = ffprobe(path("out.mp4"));
    EXPECT_TRUE(probed.format.contains("mp4")) << probed.format.toStdString();
    EXPECT_EQ(probed.streams, (QStringList{"video h264 1280x720", "audio aac"}));
    const auto done = doneValues(run);
    ASSERT_EQ(done.size(), 1u);
    EXPECT_EQ(done[0].at("video").at("width"), 1280);
    EXPECT_EQ(done[0].at("output"), path("out.mp4").toStdString());
    EXPECT_EQ(files(), QStringList{"out.mp4"});
}

TEST_F(ExportTest, AnInputWithoutAudioGivesAnOutputWithoutAudioAndANullAudioValue) {
    const HostRun run = runHost({"export", fixture("noaudio.mp4"), "--output=" + path("out.mp4")});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(ffprobe(path("out.mp4")).streams, QStringList{"video h264 320x240"});
    const auto done = doneValues(run);
    ASSERT_EQ(done.size(), 1u);
    EXPECT_TRUE(done[0].at("audio").is_null());
}

TEST_F(ExportTest, WithStderrNotATerminalNoProgressLineIsDrawn) {
    const HostRun run = runHost({"export", fixture("h264_aac.mp4"), "--output=" + path("out.mp4")});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_FALSE(run.errors.contains('\r'));
    EXPECT_FALSE(run.errors.contains("fps"));
}

TEST_F(ExportTest, AnExistingOutputFailsNamingItAndStaysAsItWas) {
    QFile existing(path("out.mp4"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("old");
    existing.close();
    const HostRun run = runHost({"export", fixture("h264_aac.mp4"), "--output=" + path("out.mp4")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorsBesidesTheLog(run.errors),
              "Output file exists: " + path("out.mp4").toUtf8() + "\n");
    EXPECT_EQ(QFileInfo(path("out.mp4")).size(), 3);
    EXPECT_EQ(files(), QStringList{"out.mp4"});
}

TEST_F(ExportTest, OverwriteReplacesAnExistingOutput) {
    QFile existing(path("out.mp4"));
    ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
    existing.write("old");
    existing.close();
    const HostRun run =
        runHost({"export", fixture("h264_aac.mp4"), "--output=" + path("out.mp4"), "--overwrite"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(ffprobe(path("out.mp4")).streams, (QStringList{"video h264 320x240", "audio aac"}));
}

TEST_F(ExportTest, ABatchRunAgainWithSkipExistingResumesWhereItStopped) {
    const QByteArray script = "export; " + fixture("h264_aac.mp4").toUtf8()
                              + "; --output=" + path("a.mp4").toUtf8() + "; --skip-existing\n"
                              + "export; " + fixture("noaudio.mp4").toUtf8()
                              + "; --output=" + path("b.mp4").toUtf8() + "; --skip-existing\n";
    QFile::copy(fixture("h264_aac.mp4"), path("a.mp4"));
    const HostRun run = runHost({"script", writeScript(script)});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const auto all = values(run);
    EXPECT_EQ(
        all.front(),
        (nlohmann::json{{"export", {{"output", path("a.mp4").toStdString()}, {"skipped", true}}}}));
    const auto done = doneValues(run);
    ASSERT_EQ(done.size(), 1u);
    EXPECT_EQ(done[0].at("output"), path("b.mp4").toStdString());
    EXPECT_EQ(files(), (QStringList{"a.mp4", "b.mp4", "batch.reel"}));
}

TEST_F(ExportTest, AnOddInputWithTheOriginalFrameSizeFailsAsThePresetSays) {
    const HostRun run = runHost({"export", fixture("wide_1921x1080.mp4"),
                                 "--output=" + path("out.mp4"), "--preset-frame-size=original"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorsBesidesTheLog(run.errors), "Frame size must be even.\n");
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ExportTest, AnOddInputWithoutAFrameSizeIsRoundedDownToEvenSides) {
    const HostRun run = runHost(
        {"export", fixture("wide_1921x1080.mp4"), "--output=" + path("out.mp4"), "--range=0:200"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(ffprobe(path("out.mp4")).streams, QStringList{"video h264 1920x1080"});
}

TEST_F(ExportTest, WithEncodersFFDisabledItFailsNamingTheCodecAndWritesNothing) {
    const HostRun run = runHost({"--disable-plugin=EncodersFF", "export", fixture("h264_aac.mp4"),
                                 "--output=" + path("out.mp4")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorsBesidesTheLog(run.errors),
              "Can not encode CODEC_ID_H264: the plug-in EncodersFF is disabled\n");
    EXPECT_TRUE(files().isEmpty());
}

TEST_F(ExportTest, AMissingOutputDirectoryFailsNamingItAndTheReason) {
    const HostRun run =
        runHost({"export", fixture("h264_aac.mp4"), "--output=" + path("missing") + "/out.mp4"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorsBesidesTheLog(run.errors),
              "Can not write to " + path("missing").toUtf8() + ": No such file or directory\n");
}

TEST_F(ExportTest, EightExportsWithTwoRenderJobsRunAtMostTwoAtATime) {
    QByteArray script;
    for (int i = 0; i < 8; ++i) {
        script += "export; " + fixture("h264_aac.mp4").toUtf8() + "; --output="
                  + path(QStringLiteral("out%1.mp4").arg(i)).toUtf8() + "; --range=0:1000\n";
    }
    const HostRun run = runHost({"--render-jobs=2", "script", writeScript(script), "--jobs=0"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const auto done = doneValues(run);
    ASSERT_EQ(done.size(), 8u);
    // At the start of each export, at most one other may hold a place.
    for (const auto& one : done) {
        const auto start = one.at("started_ms").get<std::int64_t>();
        const auto holding = std::count_if(done.begin(), done.end(), [&](const auto& other) {
            return other.at("started_ms").template get<std::int64_t>() <= start
                   && start < other.at("finished_ms").template get<std::int64_t>();
        });
        EXPECT_LE(holding, 2);
        EXPECT_LE(start, one.at("finished_ms").get<std::int64_t>());
    }
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(ffprobe(path(QStringLiteral("out%1.mp4").arg(i))).streams.size(), 2);
}

TEST_F(ExportTest, ByDefaultExportsOfAScriptRunOneAtATime) {
    QByteArray script;
    for (int i = 0; i < 3; ++i) {
        script += "export; " + fixture("h264_aac.mp4").toUtf8() + "; --output="
                  + path(QStringLiteral("out%1.mp4").arg(i)).toUtf8() + "; --range=0:500\n";
    }
    const HostRun run = runHost({"script", writeScript(script), "--jobs=0"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    auto done = doneValues(run);
    ASSERT_EQ(done.size(), 3u);
    std::sort(done.begin(), done.end(),
              [](const auto& a, const auto& b) { return a.at("started_ms") < b.at("started_ms"); });
    for (std::size_t i = 1; i < done.size(); ++i)
        EXPECT_LE(done[i - 1].at("finished_ms"), done[i].at("started_ms"));
}

// Eight exports of two seconds each on one render-job place: the last waits far longer than
// its one-second limit, and lives on the values it emits while it waits.
TEST_F(ExportTest, ExportsWaitingForARenderJobPlaceOutliveTheirTimeLimits) {
    QByteArray script;
    for (int i = 0; i < 8; ++i) {
        script += "export; " + fixture("h264_aac.mp4").toUtf8() + "; --output="
                  + path(QStringLiteral("%1.mp4").arg(i)).toUtf8() + "; --timeout=1\n";
    }
    const HostRun run = runHost({"--render-jobs=1", "script", writeScript(script), "--jobs=0"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(doneValues(run).size(), 8u);
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(ffprobe(path(QStringLiteral("%1.mp4").arg(i))).streams.size(), 2) << i;
    // A waiting export says how many wait before it; one that runs never says it waits.
    int queued = 0;
    std::map<std::string, bool> started;
    for (const auto& value : values(run)) {
        const auto& state = value.at("export");
        const std::string output = state.at("output");
        if (state.contains("progress") || state.contains("done"))
            started[output] = true;
        if (!state.contains("queued"))
            continue;
        ++queued;
        EXPECT_FALSE(started[output]) << value.dump();
        EXPECT_GE(state.at("ahead").get<int>(), 0);
        EXPECT_LE(state.at("ahead").get<int>(), 6);
    }
    EXPECT_GT(queued, 0);
}

TEST_F(ExportTest, ASiblingFailureCancelsAnExportRunningUnderTheScriptsJobLimitAndLeavesNoFile) {
    const QByteArray script = "export; " + fixture("long.mp4").toUtf8() + "; --output="
                              + path("out.mp4").toUtf8() + "\nfail; --message=x; --after=200\n";
    const HostRun run = runHost({"script", writeScript(script), "--jobs=2"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorsBesidesTheLog(run.errors), "x\n");
    EXPECT_EQ(files(), QStringList{"batch.reel"}) << files().join(' ').toStdString();
}

TEST_F(ExportTest, AnInputThatNeverDeliversEndsWith124UnderATimeLimitAndLeavesNoFile) {
    const QString fifo = path("stalled.mp4");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    // A writer that never writes: reads wait for data rather than end.
    const int writer = ::open(QFile::encodeName(fifo).constData(), O_RDWR);
    ASSERT_GE(writer, 0);
    const HostRun run = runHost({"export", fifo, "--output=" + path("out.mp4"), "--timeout=1"});
    EXPECT_EQ(run.exitCode, 124);
    EXPECT_TRUE(run.errors.contains("Command timed out after 1 s: export"))
        << run.errors.toStdString();
    ::close(writer);
    EXPECT_EQ(files(), QStringList{"stalled.mp4"});
}

TEST_F(ExportTest, AWorkingExportOutlivesATimeLimitOnSilence) {
    const HostRun run = runHost({"export", fixture("h264_aac.mp4"), "--output=" + path("out.mp4"),
                                 "--preset=1080p", "--timeout=1"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(files(), QStringList{"out.mp4"});
}

TEST_F(ExportTest, InterruptMidExportExitsWith130AndLeavesNoFile) {
    const HostRun run =
        signalMidExport({"export", fixture("long.mp4"), "--output=" + path("out.mp4")}, SIGINT);
    EXPECT_EQ(run.exitCode, 130) << run.errors.toStdString();
    EXPECT_TRUE(files().isEmpty()) << files().join(' ').toStdString();
}

TEST_F(ExportTest, TerminationMidExportExitsWith143AndLeavesNoFile) {
    const HostRun run =
        signalMidExport({"export", fixture("long.mp4"), "--output=" + path("out.mp4")}, SIGTERM);
    EXPECT_EQ(run.exitCode, 143) << run.errors.toStdString();
    EXPECT_TRUE(files().isEmpty()) << files().join(' ').toStdString();
}

TEST_F(ExportTest, InterruptMidExportUnderAScriptsJobLimitLeavesNoFile) {
    const QByteArray script =
        "export; " + fixture("long.mp4").toUtf8() + "; --output=" + path("out.mp4").toUtf8() + "\n";
    const HostRun run = signalMidExport({"script", writeScript(script), "--jobs=1"}, SIGINT);
    EXPECT_EQ(run.exitCode, 130) << run.errors.toStdString();
    EXPECT_EQ(files(), QStringList{"batch.reel"}) << files().join(' ').toStdString();
}

TEST_F(ExportTest, WithStderrATerminalAProgressLineIsDrawnThereAndStdoutCarriesOnlyJsonValues) {
    const TerminalRun run =
        runHostOnATerminal({"export", fixture("long.mp4"), "--output=" + path("out.mp4")});
    ASSERT_EQ(run.exitCode, 0) << run.terminal.toStdString();
    // "<output> 42% 120 fps 3 s left", redrawn in place and wiped at the end.
    const QByteArray start = "\r" + path("out.mp4").toUtf8() + " ";
    EXPECT_TRUE(run.terminal.contains(start)) << run.terminal.toStdString();
    EXPECT_TRUE(run.terminal.contains("% ")) << run.terminal.toStdString();
    EXPECT_TRUE(run.terminal.contains(" fps ")) << run.terminal.toStdString();
    EXPECT_TRUE(run.terminal.contains(" left\033[K")) << run.terminal.toStdString();
    EXPECT_TRUE(run.terminal.endsWith("\r\033[K")) << run.terminal.toStdString();
    const QList<QByteArray> lines = run.output.split('\n');
    ASSERT_FALSE(lines.isEmpty());
    EXPECT_TRUE(lines.last().isEmpty());
    for (int i = 0; i + 1 < lines.size(); ++i) {
        EXPECT_FALSE(lines[i].contains('\r')) << lines[i].toStdString();
        EXPECT_NO_THROW(nlohmann::json::parse(lines[i].toStdString())) << lines[i].toStdString();
    }
    ASSERT_EQ(doneValues(HostRun{0, run.output, {}}).size(), 1u);
}

TEST_F(ExportTest, ATimeLimitExpiringWhileAnExportsTemporaryExistsRemovesIt) {
    // A 1080p export of a minute of video runs far longer than its silent sibling's limit.
    const QByteArray script =
        "export; " + fixture("long.mp4").toUtf8() + "; --output=" + path("out.mp4").toUtf8()
        + "; --preset=1080p\ntick; --count=1; --interval=600000; --timeout=2\n";
    QProcess process;
    startHost(process, {"script", writeScript(script), "--jobs=0"});
    process.closeWriteChannel();
    // Its name says the output, this host and the process; then come letters nobody can guess.
    const QString temporary = QStringLiteral("out.mp4.reelsmith-partial-%1-%2-")
                                  .arg(QSysInfo::machineHostName())
                                  .arg(process.processId());
    bool temporaryExisted = false;
    while (!temporaryExisted && process.state() == QProcess::Running) {
        temporaryExisted = !files().filter(temporary).isEmpty();
        process.waitForFinished(20);
    }
    ASSERT_TRUE(temporaryExisted) << files().join(' ').toStdString();
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 124);
    EXPECT_EQ(errorsBesidesTheLog(process.readAllStandardError()),
              "Command timed out after 2 s: tick --count=1 --interval=600000\n");
    EXPECT_EQ(files(), QStringList{"batch.reel"}) << files().join(' ').toStdString();
}
