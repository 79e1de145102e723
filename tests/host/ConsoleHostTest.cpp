#include "tests/host/HostProcess.h"
#include "tests/support/TestScale.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::HostRun;
using EditorService::Testing::runHost;
using EditorService::Testing::startHost;

namespace {

class ConsoleHostTest : public testing::Test {
protected:
    QString writeScript(const QByteArray& content) {
        const QString path = directory.filePath(QStringLiteral("script%1.reel").arg(++files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    QTemporaryDir directory;
    int files = 0;
};

TEST_F(ConsoleHostTest, EchoPrintsItsArgumentsAsOneJsonLine) {
    const HostRun run = runHost({"echo", "a", "b c"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"echo\":[\"a\",\"b c\"]}\n");
    EXPECT_EQ(run.errors, "");
}

TEST_F(ConsoleHostTest, HelpListsEveryServiceAndTheHostOptions) {
    const HostRun run = runHost({"--help"});
    EXPECT_EQ(run.exitCode, 0);
    for (const char* expected :
         {"\n  echo ", "\n  export ", "\n  fail ", "\n  noop ", "\n  preset ", "\n  presets ",
          "\n  runtime ", "\n  script ", "\n  shard ", "\n  probe ", "\n  thumbnail ", "\n  tick ",
          "--timeout, -t <seconds>", "--hot-start", "--render-jobs, --rj <N>", "-v, --version",
          "-q, --quiet", "--disable-plugin <plugin name>", "--cache-ttl <time in msec>"})
        EXPECT_TRUE(run.output.contains(expected)) << expected;
    EXPECT_TRUE(QString::fromUtf8(run.output)
                    .contains(QRegularExpression(
                        QStringLiteral("\n  script +Execute commands from script\n"))));
    EXPECT_EQ(run.errors, "");
}

TEST_F(ConsoleHostTest, NoServiceExitsWithUsageStatus) {
    const HostRun run = runHost({});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "No service specified, try \"reelsmith --help\"\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(ConsoleHostTest, UnknownServiceExitsWithUsageStatusNamingTheKnownOnes) {
    const HostRun run = runHost({"nosuch", "x"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.startsWith(
        "Unknown service \"nosuch\", known services: content, echo, export, "))
        << run.errors.toStdString();
    EXPECT_EQ(run.output, "");
}

TEST_F(ConsoleHostTest, UnknownServiceWithANewlineIsNamedOnOneLine) {
    const HostRun run = runHost({"no\nsuch", "x"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.errors.startsWith("Unknown service \"no\\x0asuch\", known services: content, "))
        << run.errors.toStdString();
    EXPECT_EQ(run.errors.count('\n'), 1);
}

TEST_F(ConsoleHostTest, UnknownHostOptionExitsWithUsageStatus) {
    const HostRun run = runHost({"--nonsense", "echo"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "Unknown option \"nonsense\", try \"reelsmith --help\"\n");
}

TEST_F(ConsoleHostTest, PlaceholdersInAnUnknownHostOptionAreQuotedAsTheyCame) {
    const HostRun run = runHost({"--%1%2", "echo"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "Unknown option \"%1%2\", try \"reelsmith --help\"\n");
}

TEST_F(ConsoleHostTest, PlaceholdersInAnUnknownPresetNameAreQuotedAsTheyCame) {
    for (const QString& name : {QStringLiteral("%2"), QStringLiteral("a%1b")}) {
        const HostRun run = runHost({"preset", "--preset=" + name});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.errors.startsWith("Unknown preset: " + name.toUtf8()
                                          + "\nAvailable presets:\nmp4\n"))
            << run.errors.toStdString();
        EXPECT_EQ(run.errors.count("Available presets:"), 1) << run.errors.toStdString();
    }
}

TEST_F(ConsoleHostTest, HotStartedRuntimeReportsEveryContextUpAndWhatWasRequired) {
    const HostRun run = runHost({"--hot-start", "runtime", "--require=engine"});
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    ASSERT_EQ(run.outputLines().size(), 1) << run.output.toStdString();
    const auto value = nlohmann::json::parse(run.outputLines().first().toStdString());
    EXPECT_EQ(value.at("runtime").at("contexts"),
              nlohmann::json({"engine", "media", "content", "render"}));
    EXPECT_EQ(value.at("runtime").at("required"), nlohmann::json({"engine"}));
}

TEST_F(ConsoleHostTest, ServiceHelpPrintsThatServicesOptions) {
    const HostRun run = runHost({"script", "--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_TRUE(run.output.contains("Execute commands from script"));
    EXPECT_TRUE(run.output.contains("--jobs, -j <N>"));
    EXPECT_EQ(run.errors, "");
}

TEST_F(ConsoleHostTest, ExportAndPresetHelpListEveryPresetTheDefaultFirst) {
    for (const char* service : {"export", "preset"}) {
        const HostRun run = runHost({service, "--help"});
        EXPECT_EQ(run.exitCode, 0) << service;
        int previous = -1;
        for (const char* preset :
             {"\n  mp4 (default)  the video's size  CODEC_ID_H264 CODEC_ID_HEVC\n", "\n  2160p ",
              "\n  1440p ", "\n  1080p ", "\n  720p ", "\n  480p ", "\n  360p "}) {
            const int at = run.output.indexOf(preset);
            EXPECT_GT(at, previous) << service << ": " << preset << "\n"
                                    << run.output.toStdString();
            previous = at;
        }
        EXPECT_TRUE(run.output.endsWith("CODEC_ID_H264 CODEC_ID_HEVC\n")) << service;
        EXPECT_EQ(run.errors, "") << service;
    }
}

TEST_F(ConsoleHostTest, FailingStreamExitsWithFailureAndTheErrorsOwnText) {
    const HostRun run = runHost({"fail", "--message=boom"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "boom\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(ConsoleHostTest, ScriptRunsItsCommandsInOrderWithOneJob) {
    const HostRun run = runHost({"script", writeScript("echo; a\n# comment\necho ; b ; c d\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"echo\":[\"a\"]}\n{\"echo\":[\"b\",\"c d\"]}\n");
    EXPECT_TRUE(run.errors.contains("Processing command: echo; a\n"));
}

TEST_F(ConsoleHostTest, ShardPartsPrintEveryValueOfTheScriptOnceBetweenThem) {
    const QString script = writeScript("# parts\necho; 0\necho; 1\n\necho; 2\necho; 3\necho; 4\n");
    QByteArray together;
    for (const char* index : {"0", "1", "2"}) {
        const HostRun run = runHost(
            {"shard", script, QStringLiteral("--index=%1").arg(index), "--count=3", "--jobs=2"});
        EXPECT_EQ(run.exitCode, 0) << run.errors.constData();
        together += run.output;
    }
    EXPECT_EQ(together, "{\"echo\":[\"0\"]}\n{\"echo\":[\"3\"]}\n"
                        "{\"echo\":[\"1\"]}\n{\"echo\":[\"4\"]}\n"
                        "{\"echo\":[\"2\"]}\n");
}

// A part reads the whole script, and the log line marks reading, not running.
TEST_F(ConsoleHostTest, ShardLogsEveryCommandItReadsThoseOfOtherPartsToo) {
    const HostRun run =
        runHost({"shard", writeScript("echo; a\necho; b\n"), "--index=1", "--count=2"});
    EXPECT_EQ(run.output, "{\"echo\":[\"b\"]}\n");
    EXPECT_TRUE(run.errors.contains("Processing command: echo; a\n"));
    EXPECT_TRUE(run.errors.contains("Processing command: echo; b\n"));
}

TEST_F(ConsoleHostTest, ShardIndexOutsideTheCountExitsWithFailureNamingTheRange) {
    const HostRun run = runHost({"shard", writeScript("echo; a\n"), "--index=3", "--count=3"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "--index must be between 0 and 2\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(ConsoleHostTest, MissingScriptFailsWithItsPath) {
    const HostRun run = runHost({"script", "/nonexistent/demo.reel"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "Can not open input device: /nonexistent/demo.reel\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(ConsoleHostTest, SilentCommandPastItsLimitEndsTheProcessWithStatus124) {
    const HostRun run = runHost({"tick", "--count=1", "--interval=3000", "--timeout=1"});
    EXPECT_EQ(run.exitCode, 124);
    EXPECT_EQ(run.errors, "Command timed out after 1 s: tick --count=1 --interval=3000\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(ConsoleHostTest, LimitBeforeTheServiceNameAppliesToTheService) {
    const HostRun run = runHost({"-t", "1", "tick", "--count=1", "--interval=3000"});
    EXPECT_EQ(run.exitCode, 124);
}

TEST_F(ConsoleHostTest, CommandWithinItsLimitCompletes) {
    const HostRun run = runHost({"tick", "--count=2", "--interval=10", "--timeout=30"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"tick\":1}\n{\"tick\":2}\n");
}

TEST_F(ConsoleHostTest, ScriptWhoseSecondCommandIsSilentPastItsLimitKeepsTheFirstValues) {
    const HostRun run = runHost(
        {"script", writeScript("echo; first\ntick; --count=1; --interval=3000; --timeout=1\n")});
    EXPECT_EQ(run.exitCode, 124);
    EXPECT_EQ(run.output, "{\"echo\":[\"first\"]}\n");
    EXPECT_TRUE(
        run.errors.contains("Command timed out after 1 s: tick --count=1 --interval=3000\n"))
        << run.errors.toStdString();
}

TEST_F(ConsoleHostTest, ValuesFromManyThreadsAtOnceAreWholeLines) {
    QByteArray script;
    for (int command = 0; command < 8; ++command)
        script += "tick; --count=300; --interval=0\n";
    const HostRun run = runHost({"script", writeScript(script), "--jobs=0"});
    EXPECT_EQ(run.exitCode, 0);
    const auto lines = run.outputLines();
    ASSERT_EQ(lines.size(), 2400);
    for (const QByteArray& line : lines)
        ASSERT_TRUE(nlohmann::json::parse(line.toStdString()).contains("tick"))
            << line.toStdString();
}

class ConsoleHostLoadTest : public ConsoleHostTest,
                            public testing::WithParamInterface<const char*> {};

TEST_P(ConsoleHostLoadTest, HundredThousandCommandsDeliverEveryValueOnce) {
    const int commands = EditorService::Testing::scaledForSanitizers(100000);
    QByteArray script;
    for (int command = 0; command < commands; ++command)
        script += "echo; " + QByteArray::number(command) + "\n";
    const HostRun run = runHost({"script", writeScript(script), GetParam()});
    ASSERT_EQ(run.exitCode, 0) << run.errors.right(500).toStdString();
    std::vector<bool> seen(commands, false);
    for (const QByteArray& line : run.outputLines()) {
        const int command =
            std::stoi(nlohmann::json::parse(line.toStdString())["echo"][0].get<std::string>());
        ASSERT_FALSE(seen.at(command)) << "twice: " << command;
        seen.at(command) = true;
    }
    EXPECT_EQ(std::count(seen.begin(), seen.end(), true), commands);
}

INSTANTIATE_TEST_SUITE_P(Jobs, ConsoleHostLoadTest,
                         testing::Values("--jobs=1", "--jobs=8", "--jobs=0"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param).substr(7) == "0"
                                        ? std::string("Unlimited")
                                        : "Jobs" + std::string(info.param).substr(7);
                         });

void expectStatusAfterSignal(int signal, int status) {
    QProcess process;
    startHost(process, {"tick", "--count=100000", "--interval=5"});
    ASSERT_TRUE(process.waitForReadyRead(60000));
    ::kill(pid_t(process.processId()), signal);
    ASSERT_TRUE(process.waitForFinished(60000));
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(process.exitCode(), status);
    const QByteArray output = process.readAllStandardOutput();
    EXPECT_TRUE(output.endsWith("}\n")) << output.toStdString();
}

TEST_F(ConsoleHostTest, InterruptStopsTheStreamAndExitsWith130) {
    expectStatusAfterSignal(SIGINT, 130);
}

TEST_F(ConsoleHostTest, TerminationStopsTheStreamAndExitsWith143) {
    expectStatusAfterSignal(SIGTERM, 143);
}

TEST_F(ConsoleHostTest, ClosedOutputEndsTheProcessQuietly) {
    const QString errors = directory.filePath(QStringLiteral("errors.txt"));
    QProcess shell;
    shell.start(QStringLiteral("bash"),
                {"-c",
                 "\"$0\" tick --count=1000000 --interval=0 2>\"$1\" | head -n 1; "
                 "echo \"status ${PIPESTATUS[0]}\"",
                 QStringLiteral(REELSMITH_HOST), errors});
    ASSERT_TRUE(shell.waitForFinished(60000));
    EXPECT_EQ(shell.readAllStandardOutput(), "{\"tick\":1}\nstatus 141\n");
    QFile errorFile(errors);
    ASSERT_TRUE(errorFile.open(QIODevice::ReadOnly));
    EXPECT_EQ(errorFile.readAll(), "");
}

} // namespace
