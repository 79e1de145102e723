#include "tests/host/HostProcess.h"

#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

using EditorService::Testing::HostRun;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runHost;
using EditorService::Testing::signalHostWhen;
using EditorService::Testing::startHost;

namespace {

class FaultTest : public testing::Test {
protected:
    QString writeScript(const QByteArray& content) {
        const QString path = directory.filePath(QStringLiteral("script%1.reel").arg(++files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return path;
    }

    QString scratchFile(const QString& name) const { return directory.filePath(name); }

    static void expectWholeJsonLines(const QByteArray& output) {
        ASSERT_TRUE(output.isEmpty() || output.endsWith('\n')) << output.right(200).toStdString();
        for (const QByteArray& line : output.split('\n')) {
            if (line.isEmpty())
                continue;
            EXPECT_TRUE(nlohmann::json::accept(line.toStdString())) << line.toStdString();
        }
    }

    // stderr lines other than the command log.
    static QList<QByteArray> errorLinesBesidesTheLog(const QByteArray& errors) {
        QList<QByteArray> lines;
        for (const QByteArray& line : errors.split('\n')) {
            if (!line.isEmpty() && !line.contains("] Processing command: "))
                lines.append(line);
        }
        return lines;
    }

    // Starts the host on a script, waits for its first values, signals it and collects.
    HostRun signalDuringScript(const QByteArray& script, const QStringList& options, int signal) {
        return signalHostWhen(
            QStringList{"script", writeScript(script)} + options,
            [](const QByteArray& output) { return output.count('\n') >= 20; }, signal);
    }

    QuietHostSanitizer quietSanitizer;
    QTemporaryDir directory;
    int files = 0;
};

const QByteArray fourEndlessTickers = "tick; --count=1000000; --interval=1\n"
                                      "tick; --count=1000000; --interval=1\n"
                                      "tick; --count=1000000; --interval=1\n"
                                      "tick; --count=1000000; --interval=1\n";

TEST_F(FaultTest, InterruptDuringAScriptOfCommandsRunningAtOnceExitsWith130AndWholeLines) {
    const HostRun run = signalDuringScript(fourEndlessTickers, {"--jobs=0"}, SIGINT);
    EXPECT_EQ(run.exitCode, 130);
    expectWholeJsonLines(run.output);
    EXPECT_TRUE(errorLinesBesidesTheLog(run.errors).isEmpty()) << run.errors.toStdString();
}

TEST_F(FaultTest, InterruptDuringAScriptOfLimitedCommandsExitsWith130AndWholeLines) {
    const HostRun run = signalDuringScript(fourEndlessTickers, {"--jobs=2"}, SIGINT);
    EXPECT_EQ(run.exitCode, 130);
    expectWholeJsonLines(run.output);
    EXPECT_TRUE(errorLinesBesidesTheLog(run.errors).isEmpty()) << run.errors.toStdString();
}

TEST_F(FaultTest, TerminationDuringAScriptWithOneJobExitsWith143AndWholeLines) {
    const HostRun run = signalDuringScript(fourEndlessTickers, {}, SIGTERM);
    EXPECT_EQ(run.exitCode, 143);
    expectWholeJsonLines(run.output);
    EXPECT_TRUE(errorLinesBesidesTheLog(run.errors).isEmpty()) << run.errors.toStdString();
}

// Limited commands deliver through the main thread, from a timer thread of their own each.
TEST_F(FaultTest, InterruptDuringTimeLimitedCommandsExitsWith130AndWholeLines) {
    const HostRun run = signalDuringScript("tick; --count=1000000; --interval=1; --timeout=60\n"
                                           "tick; --count=1000000; --interval=1; --timeout=60\n",
                                           {"--jobs=0"}, SIGINT);
    EXPECT_EQ(run.exitCode, 130);
    expectWholeJsonLines(run.output);
    EXPECT_TRUE(errorLinesBesidesTheLog(run.errors).isEmpty()) << run.errors.toStdString();
}

// The first signal decides the status, also when several arrive together and threads are busy.
TEST_F(FaultTest, SecondInterruptWhileStoppingChangesNothing) {
    QProcess process;
    startHost(process, {"script", writeScript(fourEndlessTickers), "--jobs=0"});
    ASSERT_TRUE(process.waitForReadyRead(60000));
    ::kill(pid_t(process.processId()), SIGINT);
    ::kill(pid_t(process.processId()), SIGINT);
    ::kill(pid_t(process.processId()), SIGTERM);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), 130);
    expectWholeJsonLines(process.readAllStandardOutput());
}

// Values from several threads at once into a reader that leaves after the first line: the
// host ends with 141 and says nothing but its command log.
TEST_F(FaultTest, ClosedOutputDuringAScriptOfThreadedCommandsEndsQuietly) {
    for (const char* jobs : {"--jobs=0", "--jobs=1", "--jobs=3"}) {
        const QString errors = scratchFile(QStringLiteral("errors.txt"));
        QProcess shell;
        shell.start(
            QStringLiteral("bash"),
            {"-c",
             "\"$0\" script \"$1\" \"$2\" 2>\"$3\" | head -n 1; echo \"status ${PIPESTATUS[0]}\"",
             QStringLiteral(REELSMITH_HOST), writeScript(fourEndlessTickers),
             QString::fromLatin1(jobs), errors});
        ASSERT_TRUE(shell.waitForFinished(60000)) << jobs;
        EXPECT_EQ(shell.readAllStandardOutput(), "{\"tick\":1}\nstatus 141\n") << jobs;
        QFile errorFile(errors);
        ASSERT_TRUE(errorFile.open(QIODevice::ReadOnly));
        EXPECT_TRUE(errorLinesBesidesTheLog(errorFile.readAll()).isEmpty()) << jobs;
    }
}

// Sixteen commands on sixteen threads, with long values from the main thread between them:
// every line is one whole value, and every command's every value is there once.
TEST_F(FaultTest, EveryLineIsOneWholeValueWhileManyThreadsWrite) {
    const int commands = 16;
    const int ticks = 3000;
    const QByteArray longArgument(64 * 1024, 'y');
    QByteArray script;
    for (int command = 0; command < commands; ++command) {
        script += "tick; --count=" + QByteArray::number(ticks) + "; --interval=0\n";
        script += "echo; " + longArgument + "\n";
    }
    const HostRun run = runHost({"script", writeScript(script), "--jobs=0"});
    EXPECT_EQ(run.exitCode, 0);
    expectWholeJsonLines(run.output);
    std::map<int, int> tickCounts;
    int echoes = 0;
    for (const QByteArray& line : run.outputLines()) {
        const auto value = nlohmann::json::parse(line.toStdString(), nullptr, false);
        if (value.contains("tick")) {
            ++tickCounts[value.at("tick").get<int>()];
            continue;
        }
        EXPECT_EQ(value, (nlohmann::json{{"echo", {longArgument.toStdString()}}}));
        ++echoes;
    }
    EXPECT_EQ(echoes, commands);
    ASSERT_EQ(int(tickCounts.size()), ticks);
    for (const auto& [tick, count] : tickCounts)
        ASSERT_EQ(count, commands) << "tick " << tick;
}

// A failure on one thread while others still write: one error line, nothing torn on stdout,
// and no thread left delivering into a host that is shutting down.
TEST_F(FaultTest, FailureWhileOtherThreadsWriteEndsWithOneErrorAndWholeLines) {
    const HostRun run =
        runHost({"script", writeScript(fourEndlessTickers + "fail; --message=late; --after=200\n"),
                 "--jobs=0"});
    EXPECT_EQ(run.exitCode, 1);
    expectWholeJsonLines(run.output);
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors), QList<QByteArray>{"late"});
}

} // namespace
