#pragma once

#include "media/ExportService.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/package/PackageDirectory.h"
#include "service/contexts/GlobalContextProvider.h"
#include "service/services/LimitOnSilence.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"
#include "tests/support/ManualScheduler.h"

#include <QObject>
#include <QTemporaryDir>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <ostream>
#include <rxcpp/rx.hpp>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// What the lifecycle tables of the media services share: the events a row lets happen, the
// subscriber's log, the controllers' activity, a hold on a serial thread and the fixtures
// that run a row.
namespace EditorService::Testing::Lifecycle {

// What can happen to a command under way. Every row of a table lets two of them happen, one
// after the other; the first decides how the stream ends.
enum class Event {
    Finish,      // the job finishes
    Fail,        // the job fails
    Cancel,      // the subscriber unsubscribes
    Expire,      // a time limit on silence expires
    RuntimeGone, // the host stops: it cancels every export and destroys the runtime
};

inline const char* nameOf(Event event) {
    switch (event) {
    case Event::Finish:
        return "Finish";
    case Event::Fail:
        return "Fail";
    case Event::Cancel:
        return "Cancel";
    case Event::Expire:
        return "Expire";
    case Event::RuntimeGone:
        return "RuntimeGone";
    }
    return "?";
}

inline constexpr Event everyEvent[] = {Event::Finish, Event::Fail, Event::Cancel, Event::Expire,
                                       Event::RuntimeGone};

// A row of a service without a render-job limit, whose requests each emit one value and
// complete: what varies is how many requests of one stream are in flight at once.
struct RequestsRow {
    Event first;
    Event second;
    int requests;

    bool involves(Event event) const { return first == event || second == event; }
};

// gtest prints a failing row with this.
inline void PrintTo(const RequestsRow& row, std::ostream* out) {
    *out << nameOf(row.first) << " then " << nameOf(row.second) << " with " << row.requests
         << " requests";
}

inline std::string rowName(const testing::TestParamInfo<RequestsRow>& info) {
    return std::string(nameOf(info.param.first)) + "Then" + nameOf(info.param.second) + "With"
           + std::to_string(info.param.requests) + "Requests";
}

// Every ordered pair of events, the same one twice included, whose first passes `firstIs`,
// with 1 and with 3 requests.
inline std::vector<RequestsRow> rowsWhereFirst(const std::function<bool(Event)>& firstIs) {
    std::vector<RequestsRow> rows;
    for (const int requests : {1, 3}) {
        for (const Event first : everyEvent) {
            for (const Event second : everyEvent) {
                if (firstIs(first))
                    rows.push_back({first, second, requests});
            }
        }
    }
    return rows;
}

// What the subscriber saw, from whichever thread delivered it.
struct Log {
    std::mutex mutex;
    std::vector<nlohmann::json> values;
    std::exception_ptr error;
    bool completed = false;
    int ends = 0;
    std::size_t valuesAtEnd = 0;

    std::size_t valueCount() {
        std::lock_guard<std::mutex> lock(mutex);
        return values.size();
    }
    int endCount() {
        std::lock_guard<std::mutex> lock(mutex);
        return ends;
    }
};

// Subscribes to the stream within `lifetime` and writes what it delivers to `log`.
inline void record(const rxcpp::observable<nlohmann::json>& stream,
                   const rxcpp::composite_subscription& lifetime, const std::shared_ptr<Log>& log) {
    stream.subscribe(
        lifetime,
        [log](const nlohmann::json& value) {
            std::lock_guard<std::mutex> lock(log->mutex);
            log->values.push_back(value);
        },
        [log](std::exception_ptr error) {
            std::lock_guard<std::mutex> lock(log->mutex);
            log->error = error;
            ++log->ends;
            log->valuesAtEnd = log->values.size();
        },
        [log] {
            std::lock_guard<std::mutex> lock(log->mutex);
            log->completed = true;
            ++log->ends;
            log->valuesAtEnd = log->values.size();
        });
}

// Whether a controller of the runtime has work under way, told by its busy and idle signals,
// and how often it became idle.
struct Activity {
    std::mutex mutex;
    bool busy = false;
    bool gone = false;
    int idles = 0;

    bool idle() {
        std::lock_guard<std::mutex> lock(mutex);
        return !busy || gone;
    }
    int idleCount() {
        std::lock_guard<std::mutex> lock(mutex);
        return idles;
    }

    template <class Controller> static std::shared_ptr<Activity> of(Controller* controller) {
        auto activity = std::make_shared<Activity>();
        QObject::connect(controller, &Controller::isBusy, [activity] {
            std::lock_guard<std::mutex> lock(activity->mutex);
            activity->busy = true;
        });
        QObject::connect(controller, &Controller::isIdle, [activity] {
            std::lock_guard<std::mutex> lock(activity->mutex);
            activity->busy = false;
            ++activity->idles;
        });
        QObject::connect(controller, &QObject::destroyed, [activity] {
            std::lock_guard<std::mutex> lock(activity->mutex);
            activity->gone = true;
        });
        return activity;
    }
};

// A job of the test's own that holds a serial thread, so that what is submitted after it
// queues behind it, until the test opens the gate.
struct SerialGate {
    std::mutex mutex;
    std::condition_variable changed;
    bool opened = false;
    bool holding = false;

    void open() {
        std::lock_guard<std::mutex> lock(mutex);
        opened = true;
        changed.notify_all();
    }
    bool isHolding() {
        std::lock_guard<std::mutex> lock(mutex);
        return holding;
    }
    bool isOpen() {
        std::lock_guard<std::mutex> lock(mutex);
        return opened;
    }

    // Submits the hold through `submit`, the serial thread's public submit. A serial thread's
    // end waits for the job that runs and drops those queued: a second job, queued behind the
    // hold, opens the gate when it runs or is dropped, so that the end never waits for the test.
    static void holdThrough(const std::shared_ptr<SerialGate>& gate,
                            const std::function<void(std::function<void()>)>& submit) {
        submit([gate] {
            std::unique_lock<std::mutex> lock(gate->mutex);
            gate->holding = true;
            gate->changed.notify_all();
            gate->changed.wait(lock, [&] { return gate->opened; });
            gate->holding = false;
        });
        struct Opener {
            std::shared_ptr<SerialGate> gate;
            ~Opener() { gate->open(); }
        };
        auto opener = std::make_shared<Opener>();
        opener->gate = gate;
        submit([opener] {});
    }
};

// A row's runtime, subscriber and time limit, whatever the service: a package directory of the
// test's own, the provider, the controllers' activity, the manual clock of the time limit and
// what the subscriber saw.
template <class RowType> class LifecycleTest : public testing::TestWithParam<RowType> {
protected:
    static constexpr std::chrono::seconds limit{10};

    void SetUp() override {
        ASSERT_TRUE(packages.isValid());
        ::Package::setPackageDirectory(packages.path());
    }
    void TearDown() override {
        provider.reset();
        ::Package::setPackageDirectory(QString());
    }

    // Builds the runtime with `arguments`, requiring `context`, and watches its file and task
    // controllers.
    void startRuntime(const QStringList& arguments, GlobalContextProvider::GlobalContext context) {
        provider.emplace(arguments);
        provider->require(context);
        ASSERT_TRUE(::Media::FileController::instance());
        ASSERT_TRUE(::Task::Controller::instance());
        parses = Activity::of(::Media::FileController::instance());
        tasks = Activity::of(::Task::Controller::instance());
    }

    // The stream under the time limit when the row lets it expire, as it is otherwise.
    rxcpp::observable<nlohmann::json> limited(rxcpp::observable<nlohmann::json> stream,
                                              const RowType& row) const {
        if (!row.involves(Event::Expire))
            return stream;
        const rxcpp::observe_on_one_worker onTimer{rxcpp::schedulers::scheduler(timer)};
        const auto expired = expiries;
        return EditorService::limitOnSilence(
            stream, limit, [expired] { ++*expired; }, onTimer, onTimer);
    }

    // Runs the main thread's loop and the time limit's due actions until `done` holds, then
    // delivers what became due on the way.
    bool settleUntil(const std::function<bool()>& done) {
        const bool reached = spinUntil([&] {
            timer->advanceBy(std::chrono::milliseconds(0));
            return done();
        });
        timer->advanceBy(std::chrono::milliseconds(0));
        return reached;
    }

    // Whether nothing but the test holds `held` any more.
    template <class T> bool heldByTheTestAlone(const std::shared_ptr<T>& held) {
        return settleUntil([&held] { return held.use_count() == 1; });
    }

    void cancel() {
        valuesAtCancel = log->valueCount();
        lifetime.unsubscribe();
    }
    // The host's end: it cancels every export and destroys the runtime.
    void runtimeGone() {
        ExportService::cancelAll();
        provider.reset();
    }

    // What every row checks once both events happened: a cancel ends nothing and an expiry
    // ends with the time limit's error, any other end comes once; nothing came after the end,
    // nor after the first event. Keeps what the log holds in `ends` and `values`.
    void expectEndedOnceBy(Event ending, std::size_t valuesAtFirst) {
        {
            std::lock_guard<std::mutex> lock(log->mutex);
            if (ending == Event::Cancel) {
                EXPECT_EQ(log->values.size(), valuesAtCancel);
            } else if (ending == Event::Expire) {
                EXPECT_THAT(log->error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
            }
            EXPECT_EQ(log->ends, ending == Event::Cancel ? 0 : 1);
            if (log->ends > 0) {
                EXPECT_EQ(log->values.size(), log->valuesAtEnd);
            }
            EXPECT_EQ(log->values.size(), valuesAtFirst);
            ends = log->ends;
            values = log->values.size();
        }
        EXPECT_EQ(expiries->load(), ending == Event::Expire ? 1 : 0);
    }

    QTemporaryDir packages;
    std::optional<GlobalContextProvider> provider;
    std::shared_ptr<Activity> parses;
    std::shared_ptr<Activity> tasks;
    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
    rxcpp::composite_subscription lifetime;
    std::shared_ptr<Log> log = std::make_shared<Log>();
    std::size_t valuesAtCancel = 0;
    std::shared_ptr<std::atomic<int>> expiries = std::make_shared<std::atomic<int>>(0);
    int ends = 0;
    std::size_t values = 0;
};

// A row of a service whose requests queue on one serial thread behind a hold of the test's
// own: Finish and Fail open the hold, the requests' inputs made or not.
class QueuedRequestsLifecycleTest : public LifecycleTest<RequestsRow> {
protected:
    void TearDown() override {
        gate->open();
        LifecycleTest::TearDown();
    }

    // Makes what the requests read, so that they succeed once they run.
    virtual void makeInputs() = 0;

    // Until the hold stands, or, once it is open, every job behind it has run.
    bool settled() {
        return settleUntil([this] {
            if (!gate->isOpen())
                return gate->isHolding();
            return !gate->isHolding() && parses->idle() && tasks->idle();
        });
    }

    void happen(Event event) {
        switch (event) {
        case Event::Finish:
            makeInputs();
            gate->open();
            break;
        case Event::Fail:
            gate->open();
            break;
        case Event::Cancel:
            cancel();
            break;
        case Event::Expire:
            timer->advanceBy(limit);
            break;
        case Event::RuntimeGone:
            runtimeGone();
            break;
        }
        ASSERT_TRUE(settled()) << nameOf(event);
    }

    // Holds the serial thread through `submit`, subscribes to `stream`, whose requests all
    // queue behind the hold, and lets the row's two events happen. Keeps how many values had
    // come after the first in `valuesAtFirst`.
    void holdSubscribeAndHappen(const std::function<void(std::function<void()>)>& submit,
                                const rxcpp::observable<nlohmann::json>& stream,
                                const RequestsRow& row) {
        SerialGate::holdThrough(gate, submit);
        ASSERT_TRUE(settled());
        record(limited(stream, row), lifetime, log);
        // Subscribing queued every request behind the hold.
        EXPECT_EQ(log->endCount(), 0);

        happen(row.first);
        ASSERT_FALSE(testing::Test::HasFatalFailure());
        valuesAtFirst = log->valueCount();
        happen(row.second);
    }

    // Only a finish delivers values.
    void expectValuesOnlyOnFinish(Event ending) {
        if (ending == Event::Finish)
            return;
        std::lock_guard<std::mutex> lock(log->mutex);
        EXPECT_TRUE(log->values.empty());
    }

    // Whatever still waits behind the hold runs now and delivers nothing more; the thread
    // serves the next request, whose stream `next` makes, which delivers one value.
    void
    expectTheQueueToServeTheNext(const std::function<rxcpp::observable<nlohmann::json>()>& next) {
        gate->open();
        ASSERT_TRUE(settled());
        EXPECT_EQ(log->valueCount(), values);
        EXPECT_EQ(log->endCount(), ends);
        rxcpp::composite_subscription subscription;
        const auto nextLog = std::make_shared<Log>();
        record(next(), subscription, nextLog);
        EXPECT_TRUE(settleUntil([&] { return nextLog->endCount() > 0; }));
        EXPECT_TRUE(nextLog->completed);
        EXPECT_EQ(nextLog->valueCount(), 1u);
    }

    // The controllers are idle; nothing holds the subscriber, nor the hold, once the
    // subscription is let go.
    void expectIdleAndLetGo() {
        EXPECT_TRUE(parses->idle());
        EXPECT_TRUE(tasks->idle());
        lifetime.unsubscribe();
        EXPECT_TRUE(heldByTheTestAlone(log)) << log.use_count();
        EXPECT_TRUE(heldByTheTestAlone(gate)) << gate.use_count();
    }

    std::shared_ptr<SerialGate> gate = std::make_shared<SerialGate>();
    std::size_t valuesAtFirst = 0;
};

} // namespace EditorService::Testing::Lifecycle
