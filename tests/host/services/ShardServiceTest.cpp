#include "host/services/ShardService.h"

#include "host/services/EchoService.h"
#include "host/services/FailService.h"
#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/launcher/CLILauncher.h"
#include "service/services/ScriptService.h"
#include "tests/service/services/RecordingService.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using namespace EditorService;
using namespace EditorService::Testing;
using json = nlohmann::json;

namespace {

// Commands that run a while on a thread of their own, so that a limit on commands at once
// shows: `probe;<name>` counts itself running from its subscription to its completion.
struct Probes {
    std::mutex mutex;
    int running = 0;
    int mostAtOnce = 0;
    std::vector<std::string> events;

    static rxcpp::observable<json> probe(const std::shared_ptr<Probes>& probes,
                                         const QStringList& arguments) {
        const std::string name = arguments.value(0).toStdString();
        return rxcpp::observable<>::create<json>(
                   [probes, name](rxcpp::subscriber<json> subscriber) {
                       {
                           std::lock_guard<std::mutex> lock(probes->mutex);
                           probes->mostAtOnce = std::max(probes->mostAtOnce, ++probes->running);
                           probes->events.push_back("start " + name);
                       }
                       std::thread([probes, name, subscriber] {
                           std::this_thread::sleep_for(std::chrono::milliseconds(50));
                           {
                               std::lock_guard<std::mutex> lock(probes->mutex);
                               --probes->running;
                               probes->events.push_back("end " + name);
                           }
                           subscriber.on_next(json{{"probe", name}});
                           subscriber.on_completed();
                       }).detach();
                   })
            .as_dynamic();
    }
};

class ShardServiceTest : public testing::Test {
protected:
    ShardServiceTest() {
        loader->registerService(QStringLiteral("echo"), {},
                                [](auto) { return std::make_shared<EchoService>(); });
        loader->registerService(QStringLiteral("fail"), {},
                                [](auto) { return std::make_shared<FailService>(); });
        loader->registerService(QStringLiteral("script"), {}, [](auto weakLoader) {
            return std::make_shared<ScriptService>(weakLoader);
        });
        loader->registerService(QStringLiteral("probe"), {}, [probes = probes](auto) {
            return std::make_shared<ArgumentsService>([probes](const QStringList& arguments) {
                return Probes::probe(probes, arguments);
            });
        });
    }

    QString writeScript(const QByteArray& content) {
        const QString path = directory.filePath(QStringLiteral("script%1.reel").arg(++files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return path;
    }

    std::shared_ptr<Collected> runShard(const QStringList& arguments) {
        ShardService service(loader);
        return collectToEnd(service.run(QStringList(QStringLiteral("app")) + arguments));
    }

    std::shared_ptr<Collected> runPart(const QString& path, int index, int count, int jobs = 1) {
        return runShard({path, QStringLiteral("--index=%1").arg(index),
                         QStringLiteral("--count=%1").arg(count),
                         QStringLiteral("--jobs=%1").arg(jobs)});
    }

    CLILauncher launcher;
    QTemporaryDir directory;
    int files = 0;
    std::shared_ptr<Probes> probes = std::make_shared<Probes>();
    std::shared_ptr<ServiceLoader> loader = std::make_shared<ServiceLoader>();
};

json echoed(const std::string& text) {
    return json{{"echo", {text}}};
}

// Seven commands among comments, blank lines and a line of separators only.
const QByteArray sevenCommands = "# seven commands\n"
                                 "echo; 0\n"
                                 "\n"
                                 "   # indented comment\n"
                                 "echo; 1\n"
                                 "echo ;  2\n"
                                 "\t\n"
                                 "echo; 3\n"
                                 ";;;\n"
                                 "echo; 4\n"
                                 "# another\n"
                                 "echo; 5\n"
                                 "echo; 6\n";

struct Split {
    const char* name;
    int count;
};

void PrintTo(const Split& row, std::ostream* out) {
    *out << row.name;
}

class ShardServiceSplitTest : public ShardServiceTest, public testing::WithParamInterface<Split> {};

TEST_P(ShardServiceSplitTest, PartsTogetherRunEveryCommandExactlyOnceEachItsOwnPositions) {
    const int count = GetParam().count;
    const QString path = writeScript(sevenCommands);
    std::vector<json> all;
    for (int index = 0; index < count; ++index) {
        const auto part = runPart(path, index, count);
        ASSERT_TRUE(part->completed) << "part " << index;
        std::vector<json> expected;
        for (int position = index; position < 7; position += count)
            expected.push_back(echoed(std::to_string(position)));
        EXPECT_EQ(part->values, expected) << "part " << index;
        all.insert(all.end(), part->values.begin(), part->values.end());
    }
    std::vector<json> whole;
    for (int position = 0; position < 7; ++position)
        whole.push_back(echoed(std::to_string(position)));
    std::sort(all.begin(), all.end());
    std::sort(whole.begin(), whole.end());
    EXPECT_EQ(all, whole);
}

INSTANTIATE_TEST_SUITE_P(Counts, ShardServiceSplitTest,
                         testing::Values(Split{"OnePart", 1}, Split{"TwoParts", 2},
                                         Split{"ThreeParts", 3}, Split{"AsManyPartsAsCommands", 7},
                                         Split{"MorePartsThanCommands", 10}),
                         [](const testing::TestParamInfo<Split>& info) { return info.param.name; });

TEST_F(ShardServiceTest, ServiceIdIsShard) {
    EXPECT_EQ(ShardService::serviceId(), QStringLiteral("shard"));
}

TEST_F(ShardServiceTest, CommentsAndEmptyLinesTakeNoPosition) {
    const QString path =
        writeScript("# a\n\necho; first\n  # b\n\n\necho; second\n# c\necho; third\n");
    EXPECT_EQ(runPart(path, 1, 2)->values, (std::vector<json>{echoed("second")}));
    EXPECT_EQ(runPart(path, 0, 2)->values, (std::vector<json>{echoed("first"), echoed("third")}));
}

TEST_F(ShardServiceTest, PartPastTheLastCommandCompletesWithNoValue) {
    const auto part = runPart(writeScript("echo; only\n"), 3, 4);
    EXPECT_TRUE(part->completed);
    EXPECT_TRUE(part->values.empty());
}

TEST_F(ShardServiceTest, WithoutIndexAndCountThePartIsTheWholeScript) {
    const auto part = runShard({writeScript("echo; a\necho; b\n")});
    EXPECT_EQ(part->values, (std::vector<json>{echoed("a"), echoed("b")}));
}

TEST_F(ShardServiceTest, OneJobRunsThePartsCommandsOneAfterTheOtherInScriptOrder) {
    const QString path = writeScript("probe; a\nprobe; b\nprobe; c\nprobe; d\nprobe; e\n");
    const auto part = runPart(path, 0, 2, 1);
    EXPECT_TRUE(part->completed);
    EXPECT_EQ(probes->events, (std::vector<std::string>{"start a", "end a", "start c", "end c",
                                                        "start e", "end e"}));
}

TEST_F(ShardServiceTest, JobLimitBoundsThePartsCommandsAtOnce) {
    QByteArray script;
    for (int command = 0; command < 12; ++command)
        script += "probe; " + QByteArray::number(command) + "\n";
    const auto part = runPart(writeScript(script), 1, 2, 2);
    EXPECT_TRUE(part->completed);
    EXPECT_EQ(part->values.size(), 6u);
    EXPECT_EQ(probes->mostAtOnce, 2);
}

TEST_F(ShardServiceTest, FirstFailureEndsThePartWithThatCommandsError) {
    const QString path = writeScript("echo; 0\necho; 1\necho; 2\nfail; --message=boom\n"
                                     "echo; 4\necho; 5\n");
    const auto failing = runPart(path, 1, 2);
    EXPECT_EQ(failing->values, (std::vector<json>{echoed("1")}));
    EXPECT_THAT(failing->error, FailedWith<Error>("boom"));
    EXPECT_FALSE(failing->completed);
    const auto other = runPart(path, 0, 2);
    EXPECT_TRUE(other->completed);
    EXPECT_EQ(other->values, (std::vector<json>{echoed("0"), echoed("2"), echoed("4")}));
}

TEST_F(ShardServiceTest, NestedScriptRunsWholeInThePartOfItsLine) {
    const QString nested = writeScript("echo; n0\necho; n1\necho; n2\n");
    const QString path = writeScript("echo; 0\nscript; " + nested.toUtf8() + "\necho; 2\n");
    EXPECT_EQ(runPart(path, 1, 2)->values,
              (std::vector<json>{echoed("n0"), echoed("n1"), echoed("n2")}));
    EXPECT_EQ(runPart(path, 0, 2)->values, (std::vector<json>{echoed("0"), echoed("2")}));
}

TEST_F(ShardServiceTest, MissingScriptFailsWithItsPath) {
    const auto part = runPart(QStringLiteral("/nonexistent/jobs.reel"), 0, 2);
    EXPECT_THAT(part->error, FailedWith<std::runtime_error>(
                                 "Can not open input device: /nonexistent/jobs.reel"));
}

struct BadValues {
    const char* name;
    QStringList arguments;
    std::string message;
};

void PrintTo(const BadValues& row, std::ostream* out) {
    *out << row.name;
}

class ShardServiceBadValuesTest : public ShardServiceTest,
                                  public testing::WithParamInterface<BadValues> {};

TEST_P(ShardServiceBadValuesTest, FailsWithErrorNamingTheAllowedValues) {
    const BadValues& row = GetParam();
    const auto part = runShard(QStringList(writeScript("echo; a\n")) + row.arguments);
    EXPECT_THAT(part->error, FailedWith<Error>(row.message));
    EXPECT_TRUE(part->values.empty());
}

INSTANTIATE_TEST_SUITE_P(
    Values, ShardServiceBadValuesTest,
    testing::Values(
        BadValues{"CountOfZero", {"--index=0", "--count=0"}, "--count must be at least 1"},
        BadValues{"NegativeCount", {"--count=-3"}, "--count must be at least 1"},
        BadValues{
            "IndexEqualToCount", {"--index=4", "--count=4"}, "--index must be between 0 and 3"},
        BadValues{"NegativeIndex", {"--index=-1", "--count=2"}, "--index must be between 0 and 1"},
        BadValues{"IndexWithoutCount", {"--index=1"}, "--index must be between 0 and 0"}),
    [](const testing::TestParamInfo<BadValues>& info) { return info.param.name; });

TEST_F(ShardServiceTest, MissingPathFailsWithError) {
    const auto part = runShard({"--index=0", "--count=2"});
    EXPECT_THAT(part->error, FailedWith<Error>("No script path specified"));
}

TEST_F(ShardServiceTest, HelpNamesTheOptionsAndTheUsage) {
    const auto part = runShard({"--help"});
    ASSERT_TRUE(part->error);
    EXPECT_THROW(std::rethrow_exception(part->error), CLI::HelpException);
    const std::string help = failureText(part->error);
    for (const char* expected : {"--index <K>", "--count <N>", "--jobs, -j <N>",
                                 "Usage: reelsmith shard <path> --index=K --count=N [--jobs=J]"})
        EXPECT_NE(help.find(expected), std::string::npos) << expected << " in " << help;
}

TEST_F(ShardServiceTest, CommandLineTakesThePathBeforeOrAfterTheOptions) {
    ShardRequest::Serializer serializer;
    for (const QStringList& arguments :
         {QStringList{"app", "jobs.reel", "--index=2", "--count=5", "-j", "3"},
          QStringList{"app", "--index", "2", "--count=5", "--jobs", "3", "jobs.reel"},
          QStringList{"app", "--path=jobs.reel", "--index=2", "--count=5", "--jobs=3"}}) {
        const auto loaded = serializer.loadFromCli(arguments);
        const auto& request = dynamic_cast<const ShardRequest&>(*loaded);
        EXPECT_EQ(request.path, QStringLiteral("jobs.reel"));
        EXPECT_EQ(request.index, 2);
        EXPECT_EQ(request.count, 5);
        EXPECT_EQ(request.jobs, 3);
    }
}

TEST_F(ShardServiceTest, APositionalPathWinsOverPathAndNoOptionTakesItForItsValue) {
    ShardRequest::Serializer serializer;
    for (const QStringList& arguments : {QStringList{"app", "--path=other.reel", "jobs.reel"},
                                         QStringList{"app", "jobs.reel", "--path=other.reel"},
                                         QStringList{"app", "jobs.reel", "--count=2", "--index"}}) {
        const auto loaded = serializer.loadFromCli(arguments);
        EXPECT_EQ(dynamic_cast<const ShardRequest&>(*loaded).path, QStringLiteral("jobs.reel"))
            << arguments.join(' ').toStdString();
    }
}

// Command lines of the jobs option, as the script request's table has them (the path first).
struct JobsLine {
    const char* name;
    QStringList arguments;
};

void PrintTo(const JobsLine& row, std::ostream* out) {
    *out << row.name;
}

class ShardServiceJobsTest : public ShardServiceTest,
                             public testing::WithParamInterface<JobsLine> {};

TEST_P(ShardServiceJobsTest, CommandLineReadsJobsAsTheScriptRequestDoes) {
    const QStringList arguments = QStringList{"app", "jobs.reel"} + GetParam().arguments;
    const auto script = ScriptRequest::Serializer().loadFromCli(arguments);
    const auto shard = ShardRequest::Serializer().loadFromCli(arguments);
    EXPECT_EQ(dynamic_cast<const ShardRequest&>(*shard).jobs,
              dynamic_cast<const ScriptRequest&>(*script).jobs);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, ShardServiceJobsTest,
    testing::Values(JobsLine{"Absent", {}}, JobsLine{"LastWithoutValue", {"--jobs"}},
                    JobsLine{"Joined", {"--jobs=3"}}, JobsLine{"Separate", {"--jobs", "3"}},
                    JobsLine{"Short", {"-j", "3"}}, JobsLine{"Zero", {"--jobs=0"}},
                    JobsLine{"Negative", {"--jobs=-1"}}, JobsLine{"NoNumber", {"--jobs=abc"}},
                    JobsLine{"Empty", {"--jobs="}}, JobsLine{"Hexadecimal", {"--jobs=0x10"}},
                    JobsLine{"TwiceTheLastWins", {"--jobs=2", "--jobs=5"}}),
    [](const testing::TestParamInfo<JobsLine>& info) { return info.param.name; });

TEST_F(ShardServiceTest, JobsThatAreNoNumberMeanNoLimitAndNoFailure) {
    const auto loaded = ShardRequest::Serializer().loadFromCli({"app", "jobs.reel", "--jobs=abc"});
    EXPECT_EQ(dynamic_cast<const ShardRequest&>(*loaded).jobs, 0);

    const auto part = runShard({writeScript("echo; a\necho; b\n"), "--jobs=abc"});
    EXPECT_FALSE(part->error) << failureText(part->error);
    EXPECT_EQ(part->values.size(), 2u);
}

ShardRequest sampleRequest() {
    ShardRequest request;
    request.path = QStringLiteral("a b.reel");
    request.index = 2;
    request.count = 5;
    request.jobs = 0;
    return request;
}

TEST_F(ShardServiceTest, JsonFormIsOneKeyPerFieldAndReadsBackTheSameRequest) {
    ShardRequest::Serializer serializer;
    const json value = serializer.toJson(sampleRequest());
    EXPECT_EQ(value, (json{{"path", "a b.reel"}, {"index", 2}, {"count", 5}, {"jobs", 0}}));
    const auto loaded = serializer.loadFromJson(value);
    const auto& request = dynamic_cast<const ShardRequest&>(*loaded);
    EXPECT_EQ(request.path, QStringLiteral("a b.reel"));
    EXPECT_EQ(request.index, 2);
    EXPECT_EQ(request.count, 5);
    EXPECT_EQ(request.jobs, 0);
}

TEST_F(ShardServiceTest, CommandLineFormReadsBackTheSameRequest) {
    ShardRequest::Serializer serializer;
    const QStringList written = serializer.toCli(sampleRequest());
    EXPECT_EQ(written, (QStringList{"app-path-stub", "--path=a b.reel", "--index=2", "--count=5",
                                    "--jobs=0"}));
    const auto loaded = serializer.loadFromCli(written);
    EXPECT_EQ(serializer.toJson(*loaded), serializer.toJson(sampleRequest()));
}

TEST_F(ShardServiceTest, JsonWithAnIndexOutsideTheCountFailsWithTheSameError) {
    ShardRequest::Serializer serializer;
    EXPECT_THAT(
        [&] {
            serializer.loadFromJson(json{{"path", "jobs.reel"}, {"index", 3}, {"count", 3}});
        },
        FailedWith<Error>("--index must be between 0 and 2"));
}

TEST_F(ShardServiceTest, ForeignRequestIsABadCast) {
    ShardRequest::Serializer serializer;
    EXPECT_THROW(serializer.toJson(ScriptRequest(QStringLiteral("a"), 1)), std::bad_cast);
}

} // namespace
