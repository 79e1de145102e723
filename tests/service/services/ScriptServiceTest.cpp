#include "service/services/ScriptService.h"

#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/launcher/CLILauncher.h"
#include "tests/service/services/RecordingService.h"
#include "tests/support/DrainMainThread.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"
#include "tests/support/TestScale.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <condition_variable>
#include <glog/logging.h>
#include <gtest/gtest.h>
#include <numeric>

using namespace EditorService;
using EditorService::Testing::drainMainThread;
using EditorService::Testing::EventLog;
using EditorService::Testing::FailedWith;
using EditorService::Testing::Gates;
using EditorService::Testing::spinUntil;
using json = nlohmann::json;

namespace {

using Events = std::vector<std::string>;

// What the caller of a script saw. Values may come from several threads at once.
struct Outcome {
    mutable std::mutex mutex;
    std::vector<json> values;
    std::vector<std::thread::id> valueThreads;
    std::exception_ptr error;
    bool completed = false;
    int ends = 0;
    rxcpp::composite_subscription lifetime;

    bool ended() const {
        std::lock_guard<std::mutex> lock(mutex);
        return ends > 0;
    }
    std::vector<json> received() const {
        std::lock_guard<std::mutex> lock(mutex);
        return values;
    }
    std::exception_ptr failure() const {
        std::lock_guard<std::mutex> lock(mutex);
        return error;
    }
    int endCount() const {
        std::lock_guard<std::mutex> lock(mutex);
        return ends;
    }
    bool hasCompleted() const {
        std::lock_guard<std::mutex> lock(mutex);
        return completed;
    }
};

void subscribeInto(const std::shared_ptr<Outcome>& outcome,
                   const rxcpp::observable<json>& results) {
    results.subscribe(
        outcome->lifetime,
        [outcome](const json& value) {
            std::lock_guard<std::mutex> lock(outcome->mutex);
            outcome->values.push_back(value);
            outcome->valueThreads.push_back(std::this_thread::get_id());
        },
        [outcome](std::exception_ptr error) {
            std::lock_guard<std::mutex> lock(outcome->mutex);
            outcome->error = error;
            ++outcome->ends;
        },
        [outcome] {
            std::lock_guard<std::mutex> lock(outcome->mutex);
            outcome->completed = true;
            ++outcome->ends;
        });
}

// Holds the thread that logs a message containing `text` until the test opens the gate, so
// that a script's reading can be paused at a chosen line.
class LogGate : public google::LogSink {
public:
    explicit LogGate(std::string text)
        : text(std::move(text)) {
        google::AddLogSink(this);
    }
    ~LogGate() override {
        open();
        google::RemoveLogSink(this);
    }

    void send(google::LogSeverity, const char*, const char*, int, const google::LogMessageTime&,
              const char* message, size_t length) override {
        std::unique_lock<std::mutex> lock(mutex);
        captured.emplace_back(message, length);
        if (captured.back().find(text) == std::string::npos)
            return;
        reached = true;
        condition.notify_all();
        condition.wait(lock, [this] { return opened; });
    }

    bool isReached() const {
        std::lock_guard<std::mutex> lock(mutex);
        return reached;
    }
    void open() {
        std::lock_guard<std::mutex> lock(mutex);
        opened = true;
        condition.notify_all();
    }
    std::vector<std::string> messages() const {
        std::lock_guard<std::mutex> lock(mutex);
        return captured;
    }

private:
    std::string text;
    mutable std::mutex mutex;
    std::condition_variable condition;
    std::vector<std::string> captured;
    bool reached = false;
    bool opened = false;
};

class ScriptServiceTest : public testing::Test {
protected:
    ScriptServiceTest() {
        Testing::registerRecordingServices(*loader, log, gates, thrown);
        loader->registerService(ScriptService::serviceId(), QStringLiteral("Runs a script"),
                                [](std::weak_ptr<const ServiceLoader> loader) {
                                    return std::make_shared<ScriptService>(loader);
                                });
    }

    ~ScriptServiceTest() override {
        for (const auto& outcome : outcomes)
            outcome->lifetime.unsubscribe();
        gates->joinAll();
        gates->dropHeld();
        drainMainThread();
    }

    QString writeScript(const QStringList& lines) {
        const QString path = directory.filePath(QStringLiteral("script%1.txt").arg(++files));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(lines.join(QLatin1Char('\n')).toUtf8());
        file.write("\n");
        return path;
    }

    // Runs the script service as the host does: made by the loader, from a command line, and
    // let go at once.
    rxcpp::observable<json> runScript(const QString& path, const QString& jobs) {
        return loader->createService(ScriptService::serviceId())
            ->run(QStringList{QCoreApplication::applicationFilePath(), path,
                              QStringLiteral("--jobs=") + jobs});
    }

    std::shared_ptr<Outcome> subscribe(const rxcpp::observable<json>& results) {
        auto outcome = std::make_shared<Outcome>();
        outcomes.push_back(outcome);
        subscribeInto(outcome, results);
        return outcome;
    }

    std::shared_ptr<Outcome> start(const QStringList& lines, const QString& jobs) {
        return subscribe(runScript(writeScript(lines), jobs));
    }

    // Runs a script of commands that end by themselves, on the main thread, to its end.
    std::shared_ptr<Outcome> complete(const QStringList& lines, const QString& jobs) {
        auto outcome = start(lines, jobs);
        settle();
        EXPECT_TRUE(outcome->ended());
        return outcome;
    }

    bool waitFor(const std::string& event) {
        return spinUntil([log = log, event] { return log->contains(event); });
    }

    bool waitForEnd(const std::shared_ptr<Outcome>& outcome) {
        return spinUntil([outcome] { return outcome->ended(); });
    }

    // Lets the held commands' threads finish, then runs all that they and the main thread have
    // queued on the main thread: what would wrongly happen next has happened when it returns.
    void settle() {
        gates->joinAll();
        drainMainThread();
    }

    static json held(const std::string& name) { return json{{"hold", name}}; }

    std::exception_ptr makeFailure(const std::string& text) {
        *thrown = std::make_exception_ptr(std::runtime_error(text));
        return *thrown;
    }

    CLILauncher launcher;
    QTemporaryDir directory;
    int files = 0;
    std::shared_ptr<EventLog> log = std::make_shared<EventLog>();
    std::shared_ptr<Gates> gates = std::make_shared<Gates>(log);
    // What the "throw" service throws.
    std::shared_ptr<std::exception_ptr> thrown = std::make_shared<std::exception_ptr>();
    std::shared_ptr<ServiceLoader> loader = std::make_shared<ServiceLoader>();
    std::vector<std::shared_ptr<Outcome>> outcomes;
};

TEST_F(ScriptServiceTest, ServiceIdIsScript) {
    EXPECT_EQ(ScriptService::serviceId(), QStringLiteral("script"));
}

TEST_F(ScriptServiceTest, RequestSerializerReadsScriptRequests) {
    const ScriptService service(loader);
    const auto serializer = service.requestSerializer();
    EXPECT_NE(dynamic_cast<ScriptRequest::Serializer*>(serializer.get()), nullptr);
}

TEST_F(ScriptServiceTest, SecondCommandStartsAfterFirstCompletes) {
    const auto outcome = start({"hold;a", "hold;b", "hold;c"}, "1");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a"}));
    gates->release("a");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "end a", "start b"}));
    gates->release("b");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "end a", "start b", "end b", "start c"}));
    EXPECT_FALSE(outcome->ended());
    gates->release("c");
    settle();
    EXPECT_EQ(log->events(), (Events{"start a", "end a", "start b", "end b", "start c", "end c"}));
    EXPECT_EQ(outcome->received(), (std::vector<json>{held("a"), held("b"), held("c")}));
    EXPECT_TRUE(outcome->hasCompleted());
}

struct FirstToEnd {
    const char* name;
    std::string ends;
    std::string runsOn;
};

// Rows print as their names, which keeps the test names readable.
void PrintTo(const FirstToEnd& row, std::ostream* out) {
    *out << row.name;
}

class ScriptServiceTwoJobsTest : public ScriptServiceTest,
                                 public testing::WithParamInterface<FirstToEnd> {};

TEST_P(ScriptServiceTwoJobsTest, ThirdCommandStartsWhenEitherOfTheFirstTwoHasEnded) {
    const FirstToEnd& row = GetParam();
    const auto outcome = start({"hold;a", "hold;b", "hold;c"}, "2");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "start b"}));
    gates->release(row.ends);
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "start b", "end " + row.ends, "start c"}));
    EXPECT_FALSE(outcome->ended());
    gates->release(row.runsOn);
    gates->release("c");
    settle();
    EXPECT_TRUE(outcome->hasCompleted());
    EXPECT_EQ(outcome->received().size(), 3u);
}

INSTANTIATE_TEST_SUITE_P(WhichEndsFirst, ScriptServiceTwoJobsTest,
                         testing::Values(FirstToEnd{"FirstEndsFirst", "a", "b"},
                                         FirstToEnd{"SecondEndsFirst", "b", "a"}),
                         [](const testing::TestParamInfo<FirstToEnd>& info) {
                             return std::string(info.param.name);
                         });

struct NoLimit {
    const char* name;
    const char* jobs;
};

void PrintTo(const NoLimit& row, std::ostream* out) {
    *out << row.name;
}

class ScriptServiceNoLimitTest : public ScriptServiceTest,
                                 public testing::WithParamInterface<NoLimit> {};

TEST_P(ScriptServiceNoLimitTest, EachCommandStartsOnTheMainThreadAsItsLineArrives) {
    const auto outcome = start({"hold;a", "hold;b", "hold;c"}, GetParam().jobs);
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "start b", "start c"}));
    const auto mainThread = std::this_thread::get_id();
    EXPECT_EQ(log->threadOf("start a"), mainThread);
    EXPECT_EQ(log->threadOf("start b"), mainThread);
    EXPECT_EQ(log->threadOf("start c"), mainThread);
    gates->release("c");
    gates->release("b");
    settle();
    EXPECT_FALSE(outcome->ended());
    gates->release("a");
    settle();
    EXPECT_TRUE(outcome->hasCompleted());
    EXPECT_EQ(outcome->received().size(), 3u);
}

INSTANTIATE_TEST_SUITE_P(BelowOne, ScriptServiceNoLimitTest,
                         testing::Values(NoLimit{"Zero", "0"}, NoLimit{"MinusOne", "-1"},
                                         NoLimit{"NotANumber", "abc"}),
                         [](const testing::TestParamInfo<NoLimit>& info) {
                             return std::string(info.param.name);
                         });

TEST_F(ScriptServiceTest, CommandWithoutValuesDoesNotStallTheQueue) {
    const auto outcome = start({"echo;a", "hold;b", "echo;c;3"}, "1");
    settle();
    ASSERT_TRUE(gates->isHeld("b"));
    gates->release("b", {});
    settle();
    EXPECT_TRUE(outcome->hasCompleted());
    EXPECT_EQ(log->events(), (Events{"start a", "end a", "start b", "end b", "start c", "end c"}));
    EXPECT_EQ(outcome->received(), (std::vector<json>{3}));
}

TEST_F(ScriptServiceTest, FailingSecondCommandEndsTheStreamWithItsExceptionAndNothingOfTheThird) {
    const auto failure = std::make_exception_ptr(std::runtime_error("b failed"));
    const auto outcome = start({"hold;a", "hold;b", "echo;c;3"}, "1");
    settle();
    gates->release("a");
    settle();
    ASSERT_TRUE(gates->isHeld("b"));
    gates->fail("b", failure);
    settle();
    EXPECT_TRUE(outcome->failure() == failure);
    EXPECT_THAT(outcome->failure(), FailedWith<std::runtime_error>("b failed"));
    EXPECT_EQ(outcome->received(), (std::vector<json>{held("a")}));
}

TEST_F(ScriptServiceTest, FailingCommandWithoutLimitLetsGoOfTheOthersOnTheThreadThatFailed) {
    const auto outcome = start({"hold;a", "hold;b", "hold;c"}, "0");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "start b", "start c"}));
    gates->fail("b", std::make_exception_ptr(std::runtime_error("b failed")));
    settle();
    ASSERT_TRUE(outcome->ended());
    EXPECT_TRUE(log->contains("cancel a"));
    EXPECT_TRUE(log->contains("cancel c"));
    EXPECT_EQ(log->threadOf("cancel a"), log->threadOf("end b"));
    EXPECT_EQ(log->threadOf("cancel c"), log->threadOf("end b"));
}

struct ThrowRow {
    const char* name;
    const char* service;
    const char* jobs;
};

void PrintTo(const ThrowRow& row, std::ostream* out) {
    *out << row.name;
}

class ScriptServiceThrowTest : public ScriptServiceTest,
                               public testing::WithParamInterface<ThrowRow> {};

TEST_P(ScriptServiceThrowTest, ThrownExceptionEndsTheStreamAsItIs) {
    const auto failure = makeFailure("can't run");
    const auto outcome = complete({"echo;a;1", QString::fromLatin1(GetParam().service), "echo;c;3"},
                                  GetParam().jobs);
    EXPECT_TRUE(outcome->failure() == failure);
    EXPECT_THAT(outcome->failure(), FailedWith<std::runtime_error>("can't run"));
    EXPECT_EQ(outcome->received(), (std::vector<json>{1}));
    EXPECT_EQ(outcome->endCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(CreateOrRun, ScriptServiceThrowTest,
                         testing::Values(ThrowRow{"RunThrowsLimited", "throw", "1"},
                                         ThrowRow{"RunThrowsUnlimited", "throw", "0"},
                                         ThrowRow{"FactoryThrowsLimited", "broken", "1"},
                                         ThrowRow{"FactoryThrowsUnlimited", "broken", "0"}),
                         [](const testing::TestParamInfo<ThrowRow>& info) {
                             return std::string(info.param.name);
                         });

TEST_F(ScriptServiceTest, UnknownServiceOnLastLineFailsAfterTheEarlierCommandsDelivered) {
    const auto outcome = start({"echo;a;1", "hold;b", "nosuch;x"}, "1");
    settle();
    ASSERT_TRUE(gates->isHeld("b"));
    EXPECT_FALSE(outcome->ended());
    gates->release("b");
    settle();
    EXPECT_THAT(
        outcome->failure(),
        FailedWith<Error>(
            "Unknown service \"nosuch\", known services: broken, echo, hold, script, throw"));
    EXPECT_EQ(outcome->received(), (std::vector<json>{1, held("b")}));
}

TEST_F(ScriptServiceTest, UnknownServiceWithoutLimitFailsAsSoonAsItsLineArrives) {
    const auto outcome = start({"hold;a", "nosuch"}, "0");
    settle();
    EXPECT_THAT(
        outcome->failure(),
        FailedWith<Error>(
            "Unknown service \"nosuch\", known services: broken, echo, hold, script, throw"));
    EXPECT_TRUE(log->contains("start a"));
    EXPECT_TRUE(log->contains("cancel a"));
    EXPECT_FALSE(log->contains("end a"));
}

// The reading runs on a thread of its own, held inside subscribe by the log gate, so the test
// waits in real time, with a generous bound, for the main thread to start the first command:
// no scheduler stands in for a reader blocked in the middle of the file.
TEST_F(ScriptServiceTest, RejectedLineFarDownFailsAtOnceWhileTheFirstCommandRuns) {
    QStringList lines{"hold;a"};
    for (int line = 0; line < 50; ++line)
        lines.append(QStringLiteral("echo;b%1;%1").arg(line));
    lines.append(QStringLiteral("--x"));
    const auto results = runScript(writeScript(lines), QStringLiteral("1"));
    auto outcome = std::make_shared<Outcome>();
    outcomes.push_back(outcome);
    {
        // The reading pauses at the bad line until the first command runs.
        LogGate gate("Processing command: --x");
        std::thread reader([outcome, results] { subscribeInto(outcome, results); });
        const bool started = waitFor("start a");
        gate.open();
        reader.join();
        ASSERT_TRUE(started);
    }
    ASSERT_TRUE(waitForEnd(outcome));
    EXPECT_THAT(outcome->failure(), FailedWith<Error>("No service specified"));
    EXPECT_FALSE(log->contains("end a"));
    EXPECT_FALSE(log->contains("cancel a"));
    EXPECT_FALSE(log->contains("start b0"));
    EXPECT_TRUE(outcome->received().empty());
    EXPECT_EQ(outcome->endCount(), 1);
}

TEST_F(ScriptServiceTest, MissingScriptFailsAtSubscriptionAndRunReturnsNormally) {
    const QString path = directory.filePath(QStringLiteral("missing.txt"));
    ScriptService service(loader);
    rxcpp::observable<json> results;
    ASSERT_NO_THROW(
        results = service.run(rxcpp::observable<>::just(ScriptRequest(path, 1)).as_dynamic()));
    const auto outcome = subscribe(results);
    settle();
    EXPECT_THAT(outcome->failure(),
                FailedWith<std::runtime_error>("Can not open input device: " + path.toStdString()));
    EXPECT_TRUE(outcome->received().empty());
    EXPECT_TRUE(log->events().empty());
    EXPECT_EQ(outcome->endCount(), 1);
}

TEST_F(ScriptServiceTest, MissingScriptFromACommandLineFailsTheStream) {
    const QString path = directory.filePath(QStringLiteral("missing.txt"));
    rxcpp::observable<json> results;
    ASSERT_NO_THROW(results = runScript(path, QStringLiteral("1")));
    const auto outcome = subscribe(results);
    settle();
    EXPECT_THAT(outcome->failure(),
                FailedWith<std::runtime_error>("Can not open input device: " + path.toStdString()));
}

TEST_F(ScriptServiceTest, NoScriptPathFailsTheStreamWithThePathError) {
    const auto service = loader->createService(ScriptService::serviceId());
    const auto outcome = subscribe(service->run(QStringList{"app"}));
    settle();
    EXPECT_THAT(outcome->failure(),
                FailedWith<std::invalid_argument>(
                    "No script path specified, try --help for all avalable options"));
}

TEST_F(ScriptServiceTest, HelpFailsTheStreamWithTheHelpTextOfTheScriptRequest) {
    const QStringList arguments{"app", "--help"};
    const std::string helpText = Testing::failureText(
        Testing::failureOf([&arguments] { ScriptRequest::Serializer().loadFromCli(arguments); }));
    ASSERT_NE(helpText.find("Execute commands from script"), std::string::npos);
    const auto service = loader->createService(ScriptService::serviceId());
    const auto outcome = subscribe(service->run(arguments));
    settle();
    EXPECT_THAT(outcome->failure(), FailedWith<CLI::HelpException>(helpText));
}

struct EmptyScriptRow {
    const char* name;
    QStringList lines;
    const char* jobs;
};

void PrintTo(const EmptyScriptRow& row, std::ostream* out) {
    *out << row.name;
}

class ScriptServiceEmptyScriptTest : public ScriptServiceTest,
                                     public testing::WithParamInterface<EmptyScriptRow> {};

TEST_P(ScriptServiceEmptyScriptTest, CompletesWithNoValue) {
    const auto outcome = complete(GetParam().lines, GetParam().jobs);
    EXPECT_TRUE(outcome->hasCompleted());
    EXPECT_TRUE(outcome->received().empty());
    EXPECT_TRUE(log->events().empty());
    EXPECT_EQ(outcome->endCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(
    NoCommands, ScriptServiceEmptyScriptTest,
    testing::Values(EmptyScriptRow{"CommentsOnlyLimited", {"# one", "", "   # two"}, "1"},
                    EmptyScriptRow{"CommentsOnlyUnlimited", {"# one", "", "   # two"}, "0"},
                    EmptyScriptRow{"Empty", {}, "1"},
                    EmptyScriptRow{"OnlySeparators", {";;;"}, "2"}),
    [](const testing::TestParamInfo<EmptyScriptRow>& info) {
        return std::string(info.param.name);
    });

TEST_F(ScriptServiceTest, ResultStreamOutlivesTheServiceObject) {
    auto service = std::make_shared<ScriptService>(loader);
    const std::weak_ptr<ScriptService> watch = service;
    const auto results = service->run(
        rxcpp::observable<>::just(ScriptRequest(writeScript({"echo;a;1"}), 1)).as_dynamic());
    service.reset();
    ASSERT_TRUE(watch.expired());
    const auto outcome = subscribe(results);
    settle();
    EXPECT_TRUE(outcome->hasCompleted());
    EXPECT_EQ(outcome->received(), (std::vector<json>{1}));
}

TEST_F(ScriptServiceTest, OneServiceServesTwoRunsAtOnce) {
    ScriptService service(loader);
    const auto first = subscribe(service.run(
        rxcpp::observable<>::just(ScriptRequest(writeScript({"hold;a"}), 1)).as_dynamic()));
    const auto second = subscribe(service.run(
        rxcpp::observable<>::just(ScriptRequest(writeScript({"echo;b;2"}), 1)).as_dynamic()));
    settle();
    EXPECT_TRUE(second->hasCompleted());
    EXPECT_EQ(second->received(), (std::vector<json>{2}));
    ASSERT_TRUE(gates->isHeld("a"));
    EXPECT_FALSE(first->ended());
    gates->release("a");
    settle();
    EXPECT_TRUE(first->hasCompleted());
    EXPECT_EQ(first->received(), (std::vector<json>{held("a")}));
}

TEST_F(ScriptServiceTest, TwoRequestsInOneStreamRunEachWithItsOwnLimit) {
    const QString first = writeScript({"hold;a1", "hold;a2"});
    const QString second = writeScript({"hold;b1", "hold;b2"});
    const auto requests = rxcpp::observable<>::create<ScriptRequest>(
        [first, second](rxcpp::subscriber<ScriptRequest> subscriber) {
            subscriber.on_next(ScriptRequest(first, 1));
            subscriber.on_next(ScriptRequest(second, 1));
            subscriber.on_completed();
        });
    ScriptService service(loader);
    const auto outcome = subscribe(service.run(requests.as_dynamic()));
    settle();
    ASSERT_EQ(log->events(), (Events{"start a1", "start b1"}));
    gates->release("a1");
    settle();
    ASSERT_TRUE(log->contains("start a2"));
    EXPECT_FALSE(log->contains("start b2"));
    gates->release("b1");
    settle();
    ASSERT_TRUE(log->contains("start b2"));
    gates->release("a2");
    settle();
    EXPECT_FALSE(outcome->ended());
    gates->release("b2");
    settle();
    EXPECT_TRUE(outcome->hasCompleted());
    EXPECT_EQ(outcome->received().size(), 4u);
}

TEST_F(ScriptServiceTest, ScriptLineRunsANestedScriptWithALimiterOfItsOwn) {
    const QString inner = writeScript({"hold;a", "hold;b"});
    const auto outcome = start({"script;" + inner + ";--jobs=2", "echo;c;3"}, "1");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "start b"}));
    gates->release("b");
    gates->release("a");
    settle();
    EXPECT_TRUE(outcome->hasCompleted());
    const Events events = log->events();
    ASSERT_EQ(events.size(), 6u);
    EXPECT_EQ(Events(events.end() - 2, events.end()), (Events{"start c", "end c"}));
    const auto values = outcome->received();
    ASSERT_EQ(values.size(), 3u);
    EXPECT_EQ(values.back(), json(3));
}

TEST_F(ScriptServiceTest, StartedCommandRunsOnAfterAFailure) {
    const auto outcome = start({"hold;a", "hold;b"}, "2");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a", "start b"}));
    gates->fail("b", std::make_exception_ptr(std::runtime_error("b failed")));
    settle();
    ASSERT_TRUE(outcome->ended());
    gates->release("a", {json("late")});
    settle();
    EXPECT_TRUE(log->contains("end a"));
    EXPECT_FALSE(log->contains("cancel a"));
}

TEST_F(ScriptServiceTest, UnsubscribingLetsStartedCommandsRunOn) {
    const auto outcome = start({"hold;a", "hold;b"}, "1");
    settle();
    ASSERT_EQ(log->events(), (Events{"start a"}));
    outcome->lifetime.unsubscribe();
    gates->release("a");
    settle();
    EXPECT_TRUE(log->contains("end a"));
    EXPECT_FALSE(log->contains("cancel a"));
}

TEST_F(ScriptServiceTest, UnsubscribingBeforeTheCommandsArriveStartsNone) {
    // Subscribing on the main thread reads the whole file at once; the commands then wait for
    // the main thread.
    const auto outcome = start({"echo;a;1", "echo;b;2", "hold;c"}, "0");
    outcome->lifetime.unsubscribe();
    settle();
    EXPECT_TRUE(log->events().empty());
    EXPECT_TRUE(outcome->received().empty());
    EXPECT_EQ(outcome->endCount(), 0);
}

// Real time, as above: the reading is paused on a thread of its own.
TEST_F(ScriptServiceTest, UnsubscribingStopsTheReadingAtTheNextLine) {
    const auto results =
        runScript(writeScript({"hold;a", "echo;b", "echo;c", "echo;d", "echo;e"}), "1");
    auto outcome = std::make_shared<Outcome>();
    outcomes.push_back(outcome);
    std::vector<std::string> logged;
    {
        LogGate gate("Processing command: echo;c");
        std::thread reader([outcome, results] { subscribeInto(outcome, results); });
        const bool started = waitFor("start a") && spinUntil([&gate] { return gate.isReached(); });
        outcome->lifetime.unsubscribe();
        gate.open();
        reader.join();
        logged = gate.messages();
        ASSERT_TRUE(started);
    }
    EXPECT_EQ(logged,
              (std::vector<std::string>{"Processing command: hold;a", "Processing command: echo;b",
                                        "Processing command: echo;c"}));
    gates->release("a");
    settle();
    EXPECT_TRUE(log->contains("end a"));
    EXPECT_FALSE(log->contains("start d"));
}

TEST_F(ScriptServiceTest, LoaderGoneWhileAScriptRunsFailsTheStreamWithError) {
    ScriptService service(loader);
    const auto outcome = subscribe(
        service.run(rxcpp::observable<>::just(ScriptRequest(writeScript({"hold;a", "echo;b;2"}), 1))
                        .as_dynamic()));
    settle();
    ASSERT_TRUE(gates->isHeld("a"));
    const std::weak_ptr<ServiceLoader> watch = loader;
    loader.reset();
    ASSERT_TRUE(watch.expired());
    gates->release("a");
    settle();
    EXPECT_THAT(outcome->failure(), FailedWith<Error>("The service loader is gone"));
    EXPECT_EQ(outcome->received(), (std::vector<json>{held("a")}));
    EXPECT_FALSE(log->contains("start b"));
}

TEST_F(ScriptServiceTest, ValuesPassUnchangedAndUnmarked) {
    const auto outcome = complete({R"(echo;a;{"k":[1,"x",null,{"deep":true}]};"text";7;[])",
                                   R"(echo;b;{"k":[1,"x",null,{"deep":true}]})"},
                                  "1");
    EXPECT_TRUE(outcome->hasCompleted());
    const json object = json::parse(R"({"k":[1,"x",null,{"deep":true}]})");
    EXPECT_EQ(outcome->received(), (std::vector<json>{object, "text", 7, json::array(), object}));
}

TEST_F(ScriptServiceTest, ValuesArriveOnTheThreadOnWhichTheCommandSendsThem) {
    const auto outcome = start({"hold;a"}, "1");
    settle();
    ASSERT_TRUE(gates->isHeld("a"));
    gates->release("a");
    settle();
    ASSERT_TRUE(outcome->ended());
    std::lock_guard<std::mutex> lock(outcome->mutex);
    ASSERT_EQ(outcome->valueThreads.size(), 1u);
    EXPECT_EQ(outcome->valueThreads.front(), log->threadOf("end a"));
    EXPECT_NE(outcome->valueThreads.front(), std::this_thread::get_id());
}

class ScriptServiceLoadTest : public ScriptServiceTest,
                              public testing::WithParamInterface<const char*> {};

TEST_P(ScriptServiceLoadTest, HundredThousandCommandsDeliverEveryValueExactlyOnce) {
    constexpr int commands = EditorService::Testing::scaledForSanitizers(100000);
    QStringList lines;
    lines.reserve(commands);
    for (int command = 0; command < commands; ++command)
        lines.append(QStringLiteral("echo;%1;%1").arg(command));
    const auto outcome = complete(lines, QString::fromLatin1(GetParam()));
    ASSERT_TRUE(outcome->hasCompleted()) << Testing::failureText(outcome->failure());
    std::vector<int> values;
    for (const auto& value : outcome->received())
        values.push_back(value.get<int>());
    std::sort(values.begin(), values.end());
    std::vector<int> expected(commands);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(values, expected);
    EXPECT_EQ(outcome->endCount(), 1);
}

INSTANTIATE_TEST_SUITE_P(Jobs, ScriptServiceLoadTest, testing::Values("1", "8", "0"),
                         [](const testing::TestParamInfo<const char*>& info) {
                             return std::string("Jobs") + info.param;
                         });

} // namespace
