#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/AbstractService.h"
#include "service/api/Request.h"
#include "service/api/ServiceLoader.h"

#include <QStringList>
#include <algorithm>
#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace EditorService::Testing {

// What the test commands did, in the order in which it happened, from whichever thread:
// "start a", "end a", "cancel a".
class EventLog {
public:
    void record(const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        entries.push_back({event, std::this_thread::get_id()});
    }

    std::vector<std::string> events() const {
        std::lock_guard<std::mutex> lock(mutex);
        std::vector<std::string> texts;
        for (const auto& entry : entries)
            texts.push_back(entry.text);
        return texts;
    }

    bool contains(const std::string& event) const {
        const auto texts = events();
        return std::find(texts.begin(), texts.end(), event) != texts.end();
    }

    // The thread of the first such event; a default id when there was none.
    std::thread::id threadOf(const std::string& event) const {
        std::lock_guard<std::mutex> lock(mutex);
        for (const auto& entry : entries) {
            if (entry.text == event)
                return entry.thread;
        }
        return {};
    }

private:
    struct Entry {
        std::string text;
        std::thread::id thread;
    };

    mutable std::mutex mutex;
    std::vector<Entry> entries;
};

// A request of the command's arguments behind the program path.
struct ArgumentsRequest : Request {
    QStringList arguments;
    std::unique_ptr<AbstractRequestSerializer> serializer() const override;
};

class ArgumentsSerializer : public AbstractRequestSerializer {
public:
    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override {
        auto request = std::make_unique<ArgumentsRequest>();
        request->arguments = arguments.mid(1);
        return request;
    }
    std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) override {
        auto request = std::make_unique<ArgumentsRequest>();
        for (const auto& argument : value)
            request->arguments.append(QString::fromStdString(argument.get<std::string>()));
        return request;
    }
    QStringList toCli(const Request& request) const override {
        return QStringList(QStringLiteral("app-path-stub"))
               + dynamic_cast<const ArgumentsRequest&>(request).arguments;
    }
    nlohmann::json toJson(const Request& request) const override {
        auto value = nlohmann::json::array();
        for (const auto& argument : dynamic_cast<const ArgumentsRequest&>(request).arguments)
            value.push_back(argument.toStdString());
        return value;
    }
};

inline std::unique_ptr<AbstractRequestSerializer> ArgumentsRequest::serializer() const {
    return std::make_unique<ArgumentsSerializer>();
}

// A service whose request is its argument list. Each request becomes the stream that
// `command` gives for its arguments; `command` holds all the state, so the stream never refers
// to the service object.
class ArgumentsService : public AbstractService {
public:
    using Command = std::function<rxcpp::observable<nlohmann::json>(const QStringList&)>;
    using AbstractService::run;

    explicit ArgumentsService(Command command)
        : command(std::move(command)) {}

    std::unique_ptr<AbstractRequestSerializer> requestSerializer() const override {
        return std::make_unique<ArgumentsSerializer>();
    }

    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override {
        const Command command = this->command;
        return requests
            .flat_map([command](const std::shared_ptr<Request>& request) {
                return command(dynamic_cast<const ArgumentsRequest&>(*request).arguments);
            })
            .as_dynamic();
    }

private:
    Command command;
};

// `echo;<name>;<json>...`: on the thread that subscribes, records "start <name>", sends each
// JSON argument in turn, records "end <name>" and completes. With no JSON argument it sends
// nothing.
inline rxcpp::observable<nlohmann::json> echo(const std::shared_ptr<EventLog>& log,
                                              const QStringList& arguments) {
    return rxcpp::observable<>::create<nlohmann::json>(
               [log, arguments](rxcpp::subscriber<nlohmann::json> subscriber) {
                   const std::string name = arguments.value(0).toStdString();
                   log->record("start " + name);
                   for (int index = 1; index < arguments.size(); ++index)
                       subscriber.on_next(nlohmann::json::parse(arguments.at(index).toStdString()));
                   log->record("end " + name);
                   subscriber.on_completed();
               })
        .as_dynamic();
}

// Commands that run until the test ends them. `hold;<name>` records "start <name>" when its
// stream is subscribed and then waits; release() or fail() ends it on a thread of its own,
// which records "end <name>" just before the completion or the error. A held command whose
// subscription is dropped before that records "cancel <name>".
class Gates {
public:
    struct Held {
        rxcpp::subscriber<nlohmann::json> subscriber;
        std::shared_ptr<std::atomic<bool>> ended;
    };
    // What the held streams share with the test; the streams never hold the Gates object.
    struct State {
        std::shared_ptr<EventLog> log;
        std::mutex mutex;
        std::map<std::string, Held> held;
    };

    explicit Gates(std::shared_ptr<EventLog> log)
        : shared(std::make_shared<State>()) {
        shared->log = std::move(log);
    }

    ~Gates() { joinAll(); }

    std::shared_ptr<State> state() const { return shared; }

    static rxcpp::observable<nlohmann::json> hold(const std::shared_ptr<State>& state,
                                                  const QStringList& arguments) {
        const std::string name = arguments.value(0).toStdString();
        return rxcpp::observable<>::create<nlohmann::json>(
                   [state, name](rxcpp::subscriber<nlohmann::json> subscriber) {
                       const auto log = state->log;
                       auto ended = std::make_shared<std::atomic<bool>>(false);
                       subscriber.add([log, name, ended] {
                           if (!*ended)
                               log->record("cancel " + name);
                       });
                       {
                           std::lock_guard<std::mutex> lock(state->mutex);
                           state->held.insert_or_assign(name, Held{subscriber, ended});
                       }
                       log->record("start " + name);
                   })
            .as_dynamic();
    }

    bool isHeld(const std::string& name) const {
        std::lock_guard<std::mutex> lock(shared->mutex);
        return shared->held.count(name) != 0;
    }

    // Ends the held command on a new thread: sends `values`, then completes.
    void release(const std::string& name, std::vector<nlohmann::json> values) {
        finish(name, std::move(values), nullptr);
    }
    // The same with the one value {"hold": name}.
    void release(const std::string& name) { release(name, {nlohmann::json{{"hold", name}}}); }
    // Ends the held command on a new thread with the error.
    void fail(const std::string& name, std::exception_ptr error) {
        finish(name, {}, std::move(error));
    }

    void joinAll() {
        std::vector<std::thread> threads;
        {
            std::lock_guard<std::mutex> lock(workersMutex);
            threads.swap(workers);
        }
        for (auto& thread : threads)
            thread.join();
    }

    // Drops the commands still held, and with them whatever their subscribers keep alive.
    void dropHeld() {
        std::map<std::string, Held> held;
        {
            std::lock_guard<std::mutex> lock(shared->mutex);
            held.swap(shared->held);
        }
    }

private:
    void finish(const std::string& name, std::vector<nlohmann::json> values,
                std::exception_ptr error) {
        Held held = take(name);
        const auto log = shared->log;
        std::lock_guard<std::mutex> lock(workersMutex);
        workers.emplace_back([log, name, held, values = std::move(values), error] {
            for (const auto& value : values)
                held.subscriber.on_next(value);
            *held.ended = true;
            log->record("end " + name);
            if (error) {
                held.subscriber.on_error(error);
                return;
            }
            held.subscriber.on_completed();
        });
    }

    Held take(const std::string& name) {
        std::lock_guard<std::mutex> lock(shared->mutex);
        const auto found = shared->held.find(name);
        if (found == shared->held.end())
            throw std::logic_error("not held: " + name);
        Held held = found->second;
        shared->held.erase(found);
        return held;
    }

    std::shared_ptr<State> shared;
    std::mutex workersMutex;
    std::vector<std::thread> workers;
};

// A service whose run() throws, before any stream exists.
class ThrowingService : public ArgumentsService {
public:
    explicit ThrowingService(std::shared_ptr<std::exception_ptr> failure)
        : ArgumentsService({})
        , failure(std::move(failure)) {}

    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>&) override {
        std::rethrow_exception(*failure);
    }

private:
    std::shared_ptr<std::exception_ptr> failure;
};

// Fills a loader with the test services:
// - "echo" and "hold" as described above;
// - "throw", whose run() throws the exception in `failure`;
// - "broken", whose factory throws the exception in `failure`.
inline void registerRecordingServices(ServiceLoader& loader, const std::shared_ptr<EventLog>& log,
                                      const std::shared_ptr<Gates>& gates,
                                      const std::shared_ptr<std::exception_ptr>& failure) {
    loader.registerService(
        QStringLiteral("echo"), QStringLiteral("Sends its arguments"),
        [log](std::weak_ptr<const ServiceLoader>) {
            return std::make_shared<ArgumentsService>(
                [log](const QStringList& arguments) { return echo(log, arguments); });
        });
    const auto state = gates->state();
    loader.registerService(
        QStringLiteral("hold"), QStringLiteral("Waits for the test"),
        [state](std::weak_ptr<const ServiceLoader>) {
            return std::make_shared<ArgumentsService>(
                [state](const QStringList& arguments) { return Gates::hold(state, arguments); });
        });
    loader.registerService(QStringLiteral("throw"), QStringLiteral("Throws from run"),
                           [failure](std::weak_ptr<const ServiceLoader>) {
                               return std::make_shared<ThrowingService>(failure);
                           });
    loader.registerService(
        QStringLiteral("broken"), QStringLiteral("Can't be made"),
        [failure](std::weak_ptr<const ServiceLoader>) -> std::shared_ptr<AbstractService> {
            std::rethrow_exception(*failure);
        });
}

} // namespace EditorService::Testing
