#include "tests/host/HostProcess.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

using EditorService::Testing::HostRun;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runHost;
using EditorService::Testing::startHost;

namespace {

const QByteArray usageOfScript = "No script path specified, try --help for all avalable options\n";

// The services the host knows, as its unknown-service message lists them, read from its help.
QByteArray knownServices() {
    const HostRun help = runHost({"--help"});
    const QByteArray services = help.output.mid(help.output.indexOf("\nServices:\n") + 11);
    QList<QByteArray> names;
    for (const QByteArray& line : services.split('\n')) {
        if (!line.startsWith("  "))
            break;
        names.append(line.trimmed().split(' ').first());
    }
    QByteArray joined;
    for (const QByteArray& name : names)
        joined += (joined.isEmpty() ? "" : ", ") + name;
    return joined;
}

class BadInputTest : public testing::Test {
protected:
    QString writeScript(const QByteArray& content, const QString& name = {}) {
        const QString path = directory.filePath(
            name.isEmpty() ? QStringLiteral("script%1.reel").arg(++files) : name);
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return path;
    }

    // stderr without the command log, which glog writes there too.
    static QList<QByteArray> errorLinesBesidesTheLog(const HostRun& run) {
        QList<QByteArray> lines;
        for (const QByteArray& line : run.errors.split('\n')) {
            if (!line.isEmpty() && !line.contains("] Processing command: "))
                lines.append(line);
        }
        return lines;
    }

    QuietHostSanitizer quietSanitizer;
    QTemporaryDir directory;
    int files = 0;
};

TEST_F(BadInputTest, MissingScriptFailsWithThePathAsGiven) {
    const HostRun run = runHost({"script", "missing.reel"}, directory.path());
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "Can not open input device: missing.reel\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(BadInputTest, DirectoryAsScriptFailsLikeAMissingFile) {
    const HostRun run = runHost({"script", directory.path()});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "Can not open input device: " + directory.path().toLocal8Bit() + "\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(BadInputTest, UnreadableScriptFailsLikeAMissingFile) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads a file of mode 000";
    const QString path = writeScript("echo; a\n");
    ASSERT_TRUE(QFile::setPermissions(path, {}));
    const HostRun run = runHost({"script", path});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, "Can not open input device: " + path.toLocal8Bit() + "\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(BadInputTest, EmptyScriptSucceedsSilently) {
    const HostRun run = runHost({"script", writeScript("")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
}

TEST_F(BadInputTest, CommentsAndBlankLinesOnlySucceedSilently) {
    const HostRun run = runHost({"script", writeScript("# one\n\n \t \n   # two\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(run.errors, "");
}

// NUL is no white space, so a line of NUL bytes is a command whose service has that name; the
// message names it in full, escaped, on one line.
TEST_F(BadInputTest, LineOfNulBytesIsAnUnknownServiceNamedInFull) {
    const HostRun run = runHost({"script", writeScript(QByteArray("\0\0\0\necho; a\n", 11))});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    const QByteArray expected =
        "Unknown service \"\\x00\\x00\\x00\", known services: " + knownServices();
    EXPECT_EQ(errorLinesBesidesTheLog(run), QList<QByteArray>{expected});
}

// Bytes that are no UTF-8 reach the service as replacement characters, and stdout stays
// valid JSON.
TEST_F(BadInputTest, InvalidUtf8ReachesTheServiceAsReplacementCharacters) {
    // The script is read in the locale's encoding.
    const QByteArray locale = qgetenv("LC_ALL");
    qputenv("LC_ALL", "C.UTF-8");
    const HostRun run = runHost({"script", writeScript("echo; a\xff"
                                                       "b; \xc3(\n")});
    qputenv("LC_ALL", locale);
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    ASSERT_EQ(run.outputLines().size(), 1);
    const auto value = nlohmann::json::parse(run.outputLines().first().toStdString());
    EXPECT_EQ(value, (nlohmann::json{{"echo",
                                      {"a\xef\xbf\xbd"
                                       "b",
                                       "\xef\xbf\xbd("}}}));
}

TEST_F(BadInputTest, CrlfLineEndsAreNoPartOfTheArguments) {
    const HostRun run = runHost({"script", writeScript("echo; a\r\necho; b\r\n\r\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"echo\":[\"a\"]}\n{\"echo\":[\"b\"]}\n");
}

// The file is read in text mode, which drops every carriage return, not only those before a
// line feed: a lone one inside a line vanishes instead of becoming a blank.
TEST_F(BadInputTest, LoneCarriageReturnInsideALineVanishes) {
    const HostRun run = runHost({"script", writeScript("echo; c\rd; e \r f\r\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"echo\":[\"cd\",\"e f\"]}\n");
}

TEST_F(BadInputTest, ByteOrderMarkIsNoPartOfTheFirstServiceName) {
    const HostRun run = runHost({"script", writeScript("\xef\xbb\xbf"
                                                       "echo; a\necho; b\n")});
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(run.output, "{\"echo\":[\"a\"]}\n{\"echo\":[\"b\"]}\n");
}

TEST_F(BadInputTest, TenMegabyteLineIsOneArgument) {
    const QByteArray argument(10 * 1024 * 1024, 'x');
    const HostRun run = runHost({"script", writeScript("echo; " + argument + "\necho; end\n")});
    EXPECT_EQ(run.exitCode, 0);
    const QList<QByteArray> lines = run.outputLines();
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines.at(0), "{\"echo\":[\"" + argument + "\"]}");
    EXPECT_EQ(lines.at(1), "{\"echo\":[\"end\"]}");
}

TEST_F(BadInputTest, LineOfOnlySeparatorsIsSkipped) {
    const HostRun run = runHost({"script", writeScript(";;;;\necho; a\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"echo\":[\"a\"]}\n");
    EXPECT_TRUE(errorLinesBesidesTheLog(run).isEmpty()) << run.errors.toStdString();
}

// A blank between two separators is an empty part, so the service's name is empty.
TEST_F(BadInputTest, SeparatorsAroundABlankNameAnEmptyService) {
    const HostRun run = runHost({"script", writeScript("; ;\necho; a\n")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(errorLinesBesidesTheLog(run),
              QList<QByteArray>{"Unknown service \"\", known services: " + knownServices()});
}

TEST_F(BadInputTest, LineOfOnlyOptionsNamesNoService) {
    const HostRun run = runHost({"script", writeScript("echo; a\n--jobs=2\n")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(errorLinesBesidesTheLog(run), QList<QByteArray>{"No service specified"});
}

TEST_F(BadInputTest, ScriptWithoutPathFailsWithTheUsageOfScript) {
    const HostRun run = runHost({"script"});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.errors, usageOfScript);
    EXPECT_EQ(run.output, "");
}

TEST_F(BadInputTest, UnknownOptionBehindTheServiceIsTheServicesMatter) {
    const HostRun run = runHost({"script", "--nonsense", writeScript("echo; a\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"echo\":[\"a\"]}\n");
}

TEST_F(BadInputTest, UnknownShortOptionBeforeTheServiceIsAUsageError) {
    const HostRun run = runHost({"-x", "echo"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "Unknown option \"x\", try \"reelsmith --help\"\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(BadInputTest, JobsBeforeTheServiceIsAUsageError) {
    const HostRun run = runHost({"--jobs=2", "script", writeScript("echo; a\n")});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.errors, "Unknown option \"jobs\", try \"reelsmith --help\"\n");
    EXPECT_EQ(run.output, "");
}

TEST_F(BadInputTest, UnknownOptionOfANestedCommandIsThatServicesMatter) {
    const HostRun run =
        runHost({"script", writeScript("tick; --count=1; --interval=0; --nonsense\n")});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.output, "{\"tick\":1}\n");
}

// A script that names itself ends with an error once scripts nest deeper than a fixed limit,
// as make and shells limit recursion, instead of growing until it is stopped.
TEST_F(BadInputTest, ScriptThatNamesItselfEndsWithANestingError) {
    const QString path = directory.filePath(QStringLiteral("self.reel"));
    writeScript("script; " + path.toLocal8Bit() + "\n", QStringLiteral("self.reel"));
    const HostRun run = runHost({"script", path});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.output, "");
    EXPECT_EQ(errorLinesBesidesTheLog(run),
              QList<QByteArray>{"Scripts nest deeper than 16 levels"});
    EXPECT_LE(run.errors.count("] Processing command: "), 17);
}

// How --jobs reads shows in the order of two commands: a slow one first, then a fast one.
// With one job at a time the slow one's value comes first; without a limit the fast one's.
struct JobsRow {
    const char* name;
    std::vector<const char*> arguments; // "%s" stands for the script's path
    const char* expectedOutput;
    int exitCode;
    const char* expectedErrors;
};

class BadJobsTest : public BadInputTest, public testing::WithParamInterface<JobsRow> {};

const char* const oneAtATime = "{\"tick\":1}\n{\"echo\":[\"fast\"]}\n";
const char* const allAtOnce = "{\"echo\":[\"fast\"]}\n{\"tick\":1}\n";

TEST_P(BadJobsTest, JobsValueReadsAsTheTableSays) {
    const QString script = writeScript("tick; --count=1; --interval=1500\necho; fast\n");
    QStringList arguments{"script"};
    for (const char* argument : GetParam().arguments)
        arguments.append(QString::fromUtf8(argument).replace(QStringLiteral("%s"), script));
    const HostRun run = runHost(arguments);
    EXPECT_EQ(run.exitCode, GetParam().exitCode);
    EXPECT_EQ(run.output, GetParam().expectedOutput);
    if (GetParam().expectedErrors) {
        EXPECT_EQ(run.errors, GetParam().expectedErrors);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Jobs, BadJobsTest,
    testing::Values(JobsRow{"Absent", {"%s"}, oneAtATime, 0, nullptr},
                    JobsRow{"NoValue", {"%s", "--jobs"}, oneAtATime, 0, nullptr},
                    JobsRow{"ShortNoValue", {"%s", "-j"}, oneAtATime, 0, nullptr},
                    JobsRow{"NotANumber", {"%s", "--jobs=abc"}, allAtOnce, 0, nullptr},
                    JobsRow{"Empty", {"%s", "--jobs="}, allAtOnce, 0, nullptr},
                    JobsRow{"Zero", {"%s", "--jobs=0"}, allAtOnce, 0, nullptr},
                    JobsRow{"Negative", {"%s", "--jobs=-1"}, allAtOnce, 0, nullptr},
                    JobsRow{"NegativeSeparate", {"%s", "--jobs", "-1"}, allAtOnce, 0, nullptr},
                    JobsRow{"Two", {"-j", "2", "%s"}, allAtOnce, 0, nullptr},
                    JobsRow{"LastWins", {"%s", "--jobs=0", "--jobs=1"}, oneAtATime, 0, nullptr},
                    JobsRow{"SwallowsThePath", {"--jobs", "%s"}, "", 1, usageOfScript.constData()}),
    [](const testing::TestParamInfo<JobsRow>& row) { return std::string(row.param.name); });

} // namespace
