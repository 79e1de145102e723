#include "service/CLIUtils.h"

#include "service/launcher/CLILauncher.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"
#include "tests/support/LogCapture.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using EditorService::Testing::FailedWith;
using EditorService::Testing::LogCapture;
using EditorService::Testing::spinUntil;

namespace {

struct Outcome {
    std::vector<QStringList> commands;
    std::exception_ptr error;
    bool completed = false;
    bool deliveredOffMainThread = false;

    bool ended() const { return completed || error; }
};

class CLIUtilsTest : public testing::Test {
protected:
    QString writeScript(const QByteArray& content) {
        const QString path = directory.filePath(QStringLiteral("script%1.txt").arg(++files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    static std::shared_ptr<Outcome> subscribe(const rxcpp::observable<QStringList>& commands) {
        auto outcome = std::make_shared<Outcome>();
        const auto onMainThread = [outcome] {
            if (QThread::currentThread() != QCoreApplication::instance()->thread())
                outcome->deliveredOffMainThread = true;
        };
        commands.subscribe(
            [outcome, onMainThread](const QStringList& command) {
                onMainThread();
                outcome->commands.push_back(command);
            },
            [outcome, onMainThread](std::exception_ptr error) {
                onMainThread();
                outcome->error = error;
            },
            [outcome, onMainThread] {
                onMainThread();
                outcome->completed = true;
            });
        return outcome;
    }

    std::shared_ptr<Outcome> run(const QByteArray& content) {
        auto outcome = subscribe(CLIUtils::openCommandScript(writeScript(content)));
        EXPECT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
        return outcome;
    }

    QStringList command(QStringList parts) const {
        parts.prepend(QCoreApplication::arguments().first());
        return parts;
    }

    CLILauncher launcher;
    QTemporaryDir directory;
    int files = 0;
};

TEST_F(CLIUtilsTest, EmptyFileYieldsNoListAndCompletes) {
    const auto outcome = run("");
    EXPECT_TRUE(outcome->commands.empty());
    EXPECT_TRUE(outcome->completed);
}

TEST_F(CLIUtilsTest, BlankLinesAndCommentsYieldNothingAndLogNothing) {
    LogCapture log;
    const auto outcome = run("\n   \n# first\n\t# second\n\n");
    EXPECT_TRUE(outcome->commands.empty());
    EXPECT_TRUE(outcome->completed);
    EXPECT_TRUE(log.messages().empty());
}

TEST_F(CLIUtilsTest, IndentedHashIsCommentAndHashBehindTextIsPlainText) {
    const auto outcome = run("   # hello\nrun # hello\n");
    ASSERT_EQ(outcome->commands.size(), 1u);
    EXPECT_EQ(outcome->commands.at(0), command({"run # hello"}));
}

TEST_F(CLIUtilsTest, BlanksAroundSeparatorsAreDropped) {
    const auto outcome = run("a;b\n  a ;  b  \n");
    ASSERT_EQ(outcome->commands.size(), 2u);
    EXPECT_EQ(outcome->commands.at(0), command({"a", "b"}));
    EXPECT_EQ(outcome->commands.at(1), command({"a", "b"}));
}

TEST_F(CLIUtilsTest, InnerRunOfBlanksBecomesOneBlankWithinPart) {
    const auto outcome = run("a  b;c\nalpha; --name=my file; --flag\n");
    ASSERT_EQ(outcome->commands.size(), 2u);
    EXPECT_EQ(outcome->commands.at(0), command({"a b", "c"}));
    EXPECT_EQ(outcome->commands.at(1), command({"alpha", "--name=my file", "--flag"}));
}

TEST_F(CLIUtilsTest, OnlySeparatorsYieldNoListButAreLogged) {
    LogCapture log;
    const auto outcome = run(";;;\n");
    EXPECT_TRUE(outcome->commands.empty());
    EXPECT_TRUE(outcome->completed);
    ASSERT_EQ(log.messages().size(), 1u);
    EXPECT_EQ(log.messages().at(0), "Processing command: ;;;");
}

TEST_F(CLIUtilsTest, SeparatorsAroundBlankYieldOneEmptyArgument) {
    const auto outcome = run("; ;\n");
    ASSERT_EQ(outcome->commands.size(), 1u);
    EXPECT_EQ(outcome->commands.at(0), command({""}));
}

TEST_F(CLIUtilsTest, DoubleSeparatorIsDroppedButSeparatedBlankStays) {
    const auto outcome = run("a;;b\na; ;b\n");
    ASSERT_EQ(outcome->commands.size(), 2u);
    EXPECT_EQ(outcome->commands.at(0), command({"a", "b"}));
    EXPECT_EQ(outcome->commands.at(1), command({"a", "", "b"}));
}

TEST_F(CLIUtilsTest, LastLineWithoutLineEndIsRead) {
    const auto outcome = run("first\nsecond");
    ASSERT_EQ(outcome->commands.size(), 2u);
    EXPECT_EQ(outcome->commands.at(1), command({"second"}));
}

TEST_F(CLIUtilsTest, TrailingLineEndYieldsNoExtraCommand) {
    const auto outcome = run("first\n");
    ASSERT_EQ(outcome->commands.size(), 1u);
    EXPECT_TRUE(outcome->completed);
}

TEST_F(CLIUtilsTest, WindowsLineEndsAreNotPartOfTheLine) {
    const auto outcome = run("first;x\r\nsecond\r\n");
    ASSERT_EQ(outcome->commands.size(), 2u);
    EXPECT_EQ(outcome->commands.at(0), command({"first", "x"}));
    EXPECT_EQ(outcome->commands.at(1), command({"second"}));
}

TEST_F(CLIUtilsTest, QuotesAndBackslashesReachTheCommandUnchanged) {
    const auto outcome = run("echo; \"a b\"; c\\;d\n");
    ASSERT_EQ(outcome->commands.size(), 1u);
    EXPECT_EQ(outcome->commands.at(0), command({"echo", "\"a b\"", "c\\", "d"}));
}

TEST_F(CLIUtilsTest, EachCommandIsLoggedWholeAndNormalisedBeforeTheSplit) {
    LogCapture log;
    run("  alpha ;\t beta  \n# not logged\n");
    ASSERT_EQ(log.messages().size(), 1u);
    EXPECT_EQ(log.messages().at(0), "Processing command: alpha ; beta");
}

TEST_F(CLIUtilsTest, CommandsArriveInFileOrderOnTheMainThread) {
    QByteArray content;
    for (int line = 0; line < 500; ++line)
        content += "command" + QByteArray::number(line) + "\n";
    const QString path = writeScript(content);
    std::shared_ptr<Outcome> outcome;
    std::thread([&] { outcome = subscribe(CLIUtils::openCommandScript(path)); }).join();
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    ASSERT_EQ(outcome->commands.size(), 500u);
    for (int line = 0; line < 500; ++line)
        EXPECT_EQ(outcome->commands.at(line).at(1), QStringLiteral("command%1").arg(line));
    EXPECT_FALSE(outcome->deliveredOffMainThread);
}

TEST_F(CLIUtilsTest, MissingPathFailsAtSubscriptionNotAtTheCall) {
    const QString path = directory.filePath(QStringLiteral("missing.txt"));
    const auto commands = CLIUtils::openCommandScript(path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("created after the call\n");
    file.close();
    const auto outcome = subscribe(commands);
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    EXPECT_EQ(outcome->commands.size(), 1u);

    const auto failed = subscribe(
        CLIUtils::openCommandScript(directory.filePath(QStringLiteral("nothing/here.txt"))));
    ASSERT_TRUE(spinUntil([failed] { return failed->ended(); }));
    EXPECT_THAT(failed->error, FailedWith<std::runtime_error>(
                                   "Can not open input device: "
                                   + directory.filePath("nothing/here.txt").toStdString()));
    EXPECT_TRUE(failed->commands.empty());
    EXPECT_FALSE(failed->deliveredOffMainThread);
}

TEST_F(CLIUtilsTest, ErrorArrivesOnlyOnceTheMainThreadRuns) {
    const auto outcome = subscribe(CLIUtils::openCommandScript(QStringLiteral("/nonexistent/x")));
    EXPECT_FALSE(outcome->ended());
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    EXPECT_THAT(outcome->error,
                FailedWith<std::runtime_error>("Can not open input device: /nonexistent/x"));
}

TEST_F(CLIUtilsTest, PlaceholdersInAMissingPathAreQuotedAsTheyCame) {
    const auto outcome =
        subscribe(CLIUtils::openCommandScript(QStringLiteral("/nonexistent/%1%2")));
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    EXPECT_THAT(outcome->error,
                FailedWith<std::runtime_error>("Can not open input device: /nonexistent/%1%2"));
}

TEST_F(CLIUtilsTest, DirectoryAsPathCannotBeOpened) {
    const auto outcome = subscribe(CLIUtils::openCommandScript(directory.path()));
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    EXPECT_THAT(outcome->error, FailedWith<std::runtime_error>("Can not open input device: "
                                                               + directory.path().toStdString()));
}

TEST_F(CLIUtilsTest, TwoSubscriptionsReadTheFileTwice) {
    const auto commands = CLIUtils::openCommandScript(writeScript("one\ntwo\n"));
    const auto first = subscribe(commands);
    const auto second = subscribe(commands);
    ASSERT_TRUE(spinUntil([&] { return first->ended() && second->ended(); }));
    EXPECT_EQ(first->commands, second->commands);
    EXPECT_EQ(first->commands.size(), 2u);
    EXPECT_EQ(second->commands.at(0), command({"one"}));
}

TEST_F(CLIUtilsTest, UnsubscriptionDuringReadingStopsWithoutCompletion) {
    const QString path = writeScript("one\ntwo\nthree\n");
    std::vector<QString> lines;
    bool completed = false;
    rxcpp::composite_subscription lifetime;
    CLIUtils::openFile(path).subscribe(
        lifetime,
        [&](const QString& line) {
            lines.push_back(line);
            lifetime.unsubscribe();
        },
        [](std::exception_ptr) { FAIL() << "no error expected"; }, [&] { completed = true; });
    EXPECT_EQ(lines, std::vector<QString>{"one"});
    EXPECT_FALSE(completed);
}

TEST_F(CLIUtilsTest, RawLinesComeUnchangedFromTheFile) {
    std::vector<QString> lines;
    CLIUtils::openFile(writeScript("  a ;b  \n\n# c"))
        .subscribe([&](const QString& line) { lines.push_back(line); }, [](std::exception_ptr) {});
    EXPECT_EQ(lines, (std::vector<QString>{"  a ;b  ", "", "# c"}));
}

TEST_F(CLIUtilsTest, EmptyFileDeliversOneEmptyRawLine) {
    std::vector<QString> lines;
    bool completed = false;
    CLIUtils::openFile(writeScript(""))
        .subscribe([&](const QString& line) { lines.push_back(line); }, [](std::exception_ptr) {},
                   [&] { completed = true; });
    EXPECT_EQ(lines, std::vector<QString>{""});
    EXPECT_TRUE(completed);
}

TEST_F(CLIUtilsTest, PipeOnlyFailsWithItsMessage) {
    const auto outcome = subscribe(CLIUtils::openCommandPipe());
    ASSERT_TRUE(spinUntil([outcome] { return outcome->ended(); }));
    EXPECT_TRUE(outcome->commands.empty());
    EXPECT_THAT(outcome->error, FailedWith<std::runtime_error>(
                                    "Input from stdin is not supported on this platform yet"));
    EXPECT_FALSE(outcome->deliveredOffMainThread);
}

TEST_F(CLIUtilsTest, ParseCommandYieldsZeroOrOneList) {
    const auto parse = [](const QString& line) {
        std::vector<QStringList> lists;
        CLIUtils::parseCommand(line).subscribe(
            [&](const QStringList& list) { lists.push_back(list); }, [](std::exception_ptr) {});
        return lists;
    };
    EXPECT_TRUE(parse(QStringLiteral("   ")).empty());
    EXPECT_TRUE(parse(QStringLiteral("#x")).empty());
    EXPECT_TRUE(parse(QStringLiteral(";")).empty());
    ASSERT_EQ(parse(QStringLiteral("x;y")).size(), 1u);
}

} // namespace
