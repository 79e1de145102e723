#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::mediaFixture;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;

namespace {

// The host run under strace, which records the system calls named; what the host does is seen
// from outside, without timing. Skips when the machine can't trace.
class MediaRuntimeTest : public testing::Test {
protected:
    void SetUp() override {
        const ToolRun probe = runTool("strace", {"-qq", "-o", "/dev/null", "true"});
        if (!probe.started || probe.exitCode != 0)
            GTEST_SKIP() << "strace can not trace here";
        // LeakSanitizer can't run in a traced process and ends it with an error of its own.
        qputenv("ASAN_OPTIONS", sanitizerOptions + ":detect_leaks=0");
    }

    void TearDown() override { qputenv("ASAN_OPTIONS", sanitizerOptions); }

    // The trace's lines; fails the test when the host failed.
    QList<QByteArray> traced(const QString& calls, const QStringList& arguments) {
        const QString log = directory.filePath(QStringLiteral("trace%1.log").arg(++runs));
        const ToolRun run = runTool(
            "strace", QStringList{"-f", "-qq", "-e", "trace=" + calls, "-o", log, REELSMITH_HOST}
                          + arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        QFile file(log);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().split('\n');
    }

    static int countContaining(const QList<QByteArray>& lines, const QByteArray& text) {
        int count = 0;
        for (const QByteArray& line : lines)
            count += line.contains(text) ? 1 : 0;
        return count;
    }

    int threadsStartedBy(const QStringList& arguments) {
        const auto lines = traced("clone,clone3", arguments);
        return countContaining(lines, "clone(") + countContaining(lines, "clone3(");
    }

    // How often a script of thumbnails of one file at several times opens that file.
    int openingsOfAScriptOfThumbnails(const QStringList& hostOptions, int count) {
        const QString path = QString::fromStdString(mediaFixture("h264_aac.mp4"));
        QByteArray script;
        for (int i = 0; i < count; ++i) {
            script += QStringLiteral("thumbnail; %1; --output=%2; --at=%3\n")
                          .arg(path, directory.filePath(QStringLiteral("t%1.png").arg(i)))
                          .arg(i * 150)
                          .toUtf8();
        }
        const QString scriptPath = directory.filePath("thumbnails.reel");
        QFile file(scriptPath);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(script);
        file.close();
        const auto lines = traced("open,openat", hostOptions + QStringList{"script", scriptPath});
        return countContaining(lines, "\"" + path.toUtf8() + "\"");
    }

    QuietHostSanitizer quietSanitizer;
    const QByteArray sanitizerOptions = qgetenv("ASAN_OPTIONS");
    QTemporaryDir directory;
    int runs = 0;
};

// A command that needs no runtime starts no more threads than a runtime of no contexts, while
// the engine alone starts some.
TEST_F(MediaRuntimeTest, EchoStartsNoRuntime) {
    const int none = threadsStartedBy({"runtime", "--require="});
    EXPECT_EQ(threadsStartedBy({"echo", "x"}), none);
    EXPECT_GT(threadsStartedBy({"runtime", "--require=engine"}), none);
}

TEST_F(MediaRuntimeTest, AScriptOfThumbnailsOfOneFileOpensItOnceWithTheDefaultCache) {
    EXPECT_EQ(openingsOfAScriptOfThumbnails({}, 10), 1);
}

TEST_F(MediaRuntimeTest, WithoutACacheEveryThumbnailOpensTheFileAgain) {
    EXPECT_EQ(openingsOfAScriptOfThumbnails({"--cache-ttl=0"}, 10), 10);
}

// The export's parse reads and validates the project, and the render takes it from there: the
// project file is opened to be recognised and to be read, once each, and its still once to be
// probed and once to be drawn.
TEST_F(MediaRuntimeTest, AnExportReadsItsProjectAndProbesItsMediaOnce) {
    const QString still = QString::fromStdString(mediaFixture("still.png"));
    const QString project = directory.filePath("edit.json");
    QFile file(project);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QStringLiteral(R"({"reelsmith_project": 1, "output": {"width": 64, "height": 48},
        "tracks": [{"type": "video", "clips": [{"source": "%1", "duration_ms": 200}]}]})")
                   .arg(still)
                   .toUtf8());
    file.close();
    const auto lines =
        traced("open,openat", {"export", project, "--output=" + directory.filePath("out.mp4")});
    EXPECT_EQ(countContaining(lines, "\"" + project.toUtf8() + "\""), 2);
    EXPECT_EQ(countContaining(lines, "\"" + still.toUtf8() + "\""), 2);
}

} // namespace
