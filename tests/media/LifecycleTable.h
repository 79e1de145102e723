#pragma once

#include <QObject>
#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <ostream>
#include <rxcpp/rx.hpp>
#include <string>
#include <vector>

#include <gtest/gtest.h>

// What the lifecycle tables of the media services share: the events a row lets happen, the
// subscriber's log, the controllers' activity and a hold on a serial thread.
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

} // namespace EditorService::Testing::Lifecycle
