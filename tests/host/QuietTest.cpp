#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::isLogLine;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::runHost;
using EditorService::Testing::writeFile;

namespace {

QList<QByteArray> logLines(const QByteArray& errors) {
    QList<QByteArray> lines;
    for (const QByteArray& line : errors.split('\n')) {
        if (isLogLine(line))
            lines.append(line);
    }
    return lines;
}

// An empty .mp4: the media libraries warn that they are unsure of its format, then fail on it
// with an error of their own.
const QString emptyMp4 = QString::fromStdString(mediaFixture("empty.mp4"));
const QByteArray cantOpenEmptyMp4 =
    "Can not open media file: " + emptyMp4.toUtf8() + ": Invalid data found when processing input";

class QuietTest : public testing::Test {
protected:
    QString writeScript(const QByteArray& content) {
        return writeFile(directory.filePath(QStringLiteral("quiet.reel")), content);
    }

    QTemporaryDir directory;
};

} // namespace

TEST_F(QuietTest, ByDefaultTheCommandLogIsOnStderr) {
    const HostRun run = runHost({"script", writeScript("echo; a\n")});
    EXPECT_EQ(run.exitCode, 0);
    ASSERT_EQ(logLines(run.errors).size(), 1) << run.errors.toStdString();
    EXPECT_TRUE(logLines(run.errors).first().startsWith("I"));
    EXPECT_TRUE(logLines(run.errors).first().endsWith("] Processing command: echo; a"));
}

TEST_F(QuietTest, QuietLeavesOutTheCommandLog) {
    for (const char* quiet : {"--quiet", "-q"}) {
        const HostRun run = runHost({quiet, "script", writeScript("echo; a\n")});
        EXPECT_EQ(run.exitCode, 0) << quiet;
        EXPECT_EQ(run.output, "{\"echo\":[\"a\"]}\n") << quiet;
        EXPECT_EQ(run.errors, "") << quiet;
    }
}

TEST_F(QuietTest, ByDefaultTheMediaLibrariesWarningsAndErrorsAreOnStderr) {
    const HostRun run = runHost({"probe", emptyMp4});
    EXPECT_EQ(run.exitCode, 1);
    const QList<QByteArray> logged = logLines(run.errors);
    ASSERT_EQ(logged.size(), 2) << run.errors.toStdString();
    EXPECT_TRUE(logged[0].startsWith("W")) << logged[0].toStdString();
    EXPECT_TRUE(logged[0].contains("misdetection possible")) << logged[0].toStdString();
    EXPECT_TRUE(logged[1].startsWith("E")) << logged[1].toStdString();
    EXPECT_TRUE(logged[1].endsWith("moov atom not found")) << logged[1].toStdString();
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors), QList<QByteArray>{cantOpenEmptyMp4});
}

TEST_F(QuietTest, QuietLeavesOutTheMediaLibrariesWarningsButKeepsTheirErrorsAndTheFailure) {
    const HostRun run = runHost({"--quiet", "probe", emptyMp4});
    EXPECT_EQ(run.exitCode, 1);
    const QList<QByteArray> logged = logLines(run.errors);
    ASSERT_EQ(logged.size(), 1) << run.errors.toStdString();
    EXPECT_TRUE(logged[0].startsWith("E")) << logged[0].toStdString();
    EXPECT_TRUE(logged[0].endsWith("moov atom not found")) << logged[0].toStdString();
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors), QList<QByteArray>{cantOpenEmptyMp4});
}

TEST_F(QuietTest, QuietKeepsTheHostsOwnErrorsAndStatuses) {
    const HostRun failed = runHost({"--quiet", "fail", "--message=boom"});
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_EQ(failed.errors, "boom\n");
    const HostRun timedOut =
        runHost({"--quiet", "tick", "--count=1", "--interval=60000", "--timeout=1"});
    EXPECT_EQ(timedOut.exitCode, 124);
    EXPECT_EQ(timedOut.errors.toStdString(),
              "Command timed out after 1 s: tick --count=1 --interval=60000\n");
}

TEST_F(QuietTest, HelpNamesTheQuietSwitch) {
    const HostRun run = runHost({"--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.output.contains("Show only errors on stderr")) << run.output.toStdString();
}
