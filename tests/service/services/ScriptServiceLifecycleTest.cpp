#include "service/services/ScriptService.h"

#include "platform/rxapp/RxApp.h"
#include "service/api/Error.h"
#include "service/launcher/CLILauncher.h"
#include "service/services/LimitOnSilence.h"
#include "tests/service/services/RecordingService.h"
#include "tests/support/DrainMainThread.h"
#include "tests/support/FailedWith.h"
#include "tests/support/ManualScheduler.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <vector>

using namespace EditorService;
using EditorService::Testing::ArgumentsService;
using EditorService::Testing::drainMainThread;
using EditorService::Testing::FailedWith;
using EditorService::Testing::ManualScheduler;
using json = nlohmann::json;
using Lines = std::vector<std::string>;

namespace {

// What happens to a running script, in the order the test makes it happen.
enum class Event {
    // The commands complete, each as soon as it has started, until none is left.
    Complete,
    // The command that started first and still runs fails.
    Fail,
    // The script's subscriber unsubscribes.
    Unsubscribe,
    // A second of virtual time passes: the time limit of every running command expires.
    Expire,
    // The last owner lets go of the loader. Unlike the others, this event doesn't let the
    // commands start first, so their turn comes after the loader has gone.
    LoaderGone,
};

const char* nameOf(Event event) {
    switch (event) {
    case Event::Complete:
        return "Complete";
    case Event::Fail:
        return "Fail";
    case Event::Unsubscribe:
        return "Unsubscribe";
    case Event::Expire:
        return "Expire";
    case Event::LoaderGone:
        return "LoaderGone";
    }
    return "?";
}

// The lines of the log that end the script's stream for its subscriber.
bool isEnd(const std::string& line) {
    return line == "completed" || line == "failed" || line == "unsubscribed";
}

struct Row {
    Event first;
    Event second;
    int jobs;
};

std::string nameOf(const Row& row) {
    return std::string(nameOf(row.first)) + "Then" + nameOf(row.second) + "_Jobs"
           + std::to_string(row.jobs);
}

void PrintTo(const Row& row, std::ostream* out) {
    *out << nameOf(row);
}

// Every ordered pair of events, the same event twice included, with no limit, one job at a
// time, and a limit below the script's four commands.
std::vector<Row> everyPairAndLimit() {
    const Event events[] = {Event::Complete, Event::Fail, Event::Unsubscribe, Event::Expire,
                            Event::LoaderGone};
    std::vector<Row> rows;
    for (const int jobs : {0, 1, 3}) {
        for (const Event first : events) {
            for (const Event second : events)
                rows.push_back(Row{first, second, jobs});
        }
    }
    return rows;
}

// The script's commands, driven by the test: `ctl;<name>` logs "start <name>" when its stream
// is subscribed and then sends nothing until the test ends it. Everything runs on the main
// thread, so none of this needs a lock.
struct Commands {
    std::shared_ptr<Lines> log;
    // Started and neither ended by the test nor let go, by name, which is also their file order.
    std::map<std::string, rxcpp::subscriber<json>> running;
    // One for each start; it lives exactly as long as that start's subscription holds on.
    std::vector<std::weak_ptr<void>> subscriptions;

    rxcpp::subscriber<json> take(const std::string& name) {
        const auto found = running.find(name);
        auto subscriber = found->second;
        running.erase(found);
        return subscriber;
    }
};

rxcpp::observable<json> controlled(const std::shared_ptr<Commands>& commands,
                                   const std::string& name) {
    const std::weak_ptr<Commands> weakCommands = commands;
    return rxcpp::observable<>::create<json>(
               [weakCommands, name](rxcpp::subscriber<json> subscriber) {
                   const auto commands = weakCommands.lock();
                   auto held = std::make_shared<int>(0);
                   commands->subscriptions.push_back(held);
                   subscriber.add([weakCommands, name, held] {
                       if (const auto commands = weakCommands.lock())
                           commands->running.erase(name);
                   });
                   commands->running.insert_or_assign(name, subscriber);
                   commands->log->push_back("start " + name);
               })
        .as_dynamic();
}

class ScriptServiceLifecycleTest : public testing::TestWithParam<Row> {
protected:
    ScriptServiceLifecycleTest() {
        commands->log = log;
        const auto commands = this->commands;
        const auto log = this->log;
        const rxcpp::observe_on_one_worker timer{rxcpp::schedulers::scheduler(clock)};
        loader->registerService(
            QStringLiteral("ctl"), QStringLiteral("Runs until the test ends it"),
            [commands, log, timer](std::weak_ptr<const ServiceLoader>) {
                return std::make_shared<ArgumentsService>(
                    [commands, log, timer](const QStringList& arguments) {
                        const std::string name = arguments.value(0).toStdString();
                        return limitOnSilence(
                            controlled(commands, name), std::chrono::seconds(1),
                            [log, name] { log->push_back("expire " + name); }, timer,
                            RxApp::instance()->mainThread());
                    });
            });
        loader->registerService(ScriptService::serviceId(), QStringLiteral("Runs a script"),
                                [](std::weak_ptr<const ServiceLoader> loader) {
                                    return std::make_shared<ScriptService>(loader);
                                });
    }

    // Subscribes to a script of four commands as the host runs it. The file is read at once;
    // the commands then wait for the main thread.
    void subscribe(int jobs) {
        const QString path = directory.filePath(QStringLiteral("script.txt"));
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("ctl;a\nctl;b\nctl;c\nctl;d\n");
        file.close();
        const auto results = loader->createService(ScriptService::serviceId())
                                 ->run(QStringList{QCoreApplication::applicationFilePath(), path,
                                                   QStringLiteral("--jobs=%1").arg(jobs)});
        const auto log = this->log;
        const auto failure = this->failure;
        results.subscribe(
            lifetime, [log](const json& value) { log->push_back("value " + value.dump()); },
            [log, failure](std::exception_ptr error) {
                *failure = error;
                log->push_back("failed");
            },
            [log] { log->push_back("completed"); });
    }

    // Runs what is due in virtual time and on the main thread, and what that brings about,
    // until neither has anything left: virtual work comes only from either of them.
    void settle() {
        do {
            clock->advanceBy(ManualScheduler::clock_type::duration::zero());
        } while (drainMainThread() > 0);
    }

    void completeAll() {
        settle();
        while (!commands->running.empty()) {
            std::vector<std::string> names;
            for (const auto& command : commands->running)
                names.push_back(command.first);
            for (const auto& name : names) {
                auto subscriber = commands->take(name);
                subscriber.on_next(json{{"ctl", name}});
                subscriber.on_completed();
            }
            settle();
        }
    }

    void apply(Event event) {
        switch (event) {
        case Event::Complete:
            completeAll();
            return;
        case Event::Fail:
            settle();
            if (!commands->running.empty())
                commands->take(commands->running.begin()->first).on_error(commandFailure);
            settle();
            return;
        case Event::Unsubscribe:
            settle();
            // After an end there is nothing left to unsubscribe from.
            if (lifetime.is_subscribed())
                log->push_back("unsubscribed");
            lifetime.unsubscribe();
            settle();
            return;
        case Event::Expire:
            settle();
            clock->advanceBy(std::chrono::seconds(1));
            settle();
            return;
        case Event::LoaderGone:
            loader.reset();
            return;
        }
    }

    // The log up to and including its first end, and the rest.
    std::pair<Lines, Lines> splitAtTheEnd() const {
        const auto end = std::find_if(log->begin(), log->end(), isEnd);
        const auto cut = end == log->end() ? end : end + 1;
        return {Lines(log->begin(), cut), Lines(cut, log->end())};
    }

    CLILauncher launcher;
    QTemporaryDir directory;
    std::shared_ptr<ManualScheduler> clock = std::make_shared<ManualScheduler>();
    std::shared_ptr<Lines> log = std::make_shared<Lines>();
    std::shared_ptr<Commands> commands = std::make_shared<Commands>();
    std::shared_ptr<ServiceLoader> loader = std::make_shared<ServiceLoader>();
    std::shared_ptr<std::exception_ptr> failure = std::make_shared<std::exception_ptr>();
    const std::exception_ptr commandFailure =
        std::make_exception_ptr(std::runtime_error("a failed"));
    rxcpp::composite_subscription lifetime;
};

TEST_P(ScriptServiceLifecycleTest, FirstEventEndsTheScriptOnceAndNothingOutlivesIt) {
    const Row& row = GetParam();
    const std::weak_ptr<ServiceLoader> watchedLoader = loader;
    subscribe(row.jobs);
    apply(row.first);
    apply(row.second);
    // Whatever still runs ends and every time limit passes: none of it may reach the caller.
    completeAll();
    clock->advanceBy(std::chrono::seconds(10));
    settle();

    // Named copies rather than a structured binding, which a lambda may not capture in C++17.
    const auto split = splitAtTheEnd();
    const Lines& untilTheEnd = split.first;
    const Lines& afterTheEnd = split.second;
    const auto count = [&untilTheEnd](const std::string& prefix) {
        return std::count_if(untilTheEnd.begin(), untilTheEnd.end(),
                             [&](const std::string& line) { return line.rfind(prefix, 0) == 0; });
    };
    const auto startsOrReachesTheCaller = [](const std::string& line) {
        return isEnd(line) || line.rfind("start ", 0) == 0 || line.rfind("value ", 0) == 0;
    };
    ASSERT_FALSE(untilTheEnd.empty());
    EXPECT_THAT(afterTheEnd,
                testing::Not(testing::Contains(testing::Truly(startsOrReachesTheCaller))))
        << "the whole log: " << testing::PrintToString(*log);

    switch (row.first) {
    case Event::Complete:
        EXPECT_EQ(untilTheEnd.back(), "completed");
        EXPECT_EQ(count("start "), 4);
        EXPECT_EQ(count("value "), 4);
        EXPECT_THAT(untilTheEnd,
                    testing::IsSupersetOf({R"(value {"ctl":"a"})", R"(value {"ctl":"b"})",
                                           R"(value {"ctl":"c"})", R"(value {"ctl":"d"})"}));
        break;
    case Event::Fail:
        EXPECT_EQ(untilTheEnd.back(), "failed");
        EXPECT_TRUE(*failure == commandFailure);
        EXPECT_THAT(*failure, FailedWith<std::runtime_error>("a failed"));
        EXPECT_EQ(count("value "), 0);
        break;
    case Event::Unsubscribe:
        EXPECT_EQ(untilTheEnd.back(), "unsubscribed");
        EXPECT_EQ(count("value "), 0);
        break;
    case Event::Expire:
        EXPECT_EQ(untilTheEnd.back(), "failed");
        EXPECT_THAT(*failure, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
        EXPECT_GE(count("expire "), 1);
        EXPECT_EQ(count("value "), 0);
        break;
    case Event::LoaderGone:
        EXPECT_EQ(untilTheEnd.back(), "failed");
        EXPECT_THAT(*failure, FailedWith<Error>("The service loader is gone"));
        EXPECT_EQ(count("start "), 0);
        break;
    }

    // Nothing is left holding on: every command's stream was let go, the caller's
    // subscription is over, no timer waits, and the loader dies with its last owner.
    for (const auto& subscription : commands->subscriptions)
        EXPECT_TRUE(subscription.expired());
    EXPECT_FALSE(lifetime.is_subscribed());
    EXPECT_EQ(clock->pending(), 0u);
    loader.reset();
    EXPECT_TRUE(watchedLoader.expired());
}

INSTANTIATE_TEST_SUITE_P(EveryPair, ScriptServiceLifecycleTest,
                         testing::ValuesIn(everyPairAndLimit()),
                         [](const testing::TestParamInfo<Row>& info) {
                             return nameOf(info.param);
                         });

} // namespace
