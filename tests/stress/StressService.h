#pragma once

#include "platform/rxapp/RxApp.h"
#include "service/api/AbstractRequestSerializer.h"
#include "service/api/AbstractService.h"
#include "service/api/Error.h"
#include "service/api/Request.h"
#include "service/api/ServiceLoader.h"

#include <QStringList>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace EditorService::Testing {

// The words of a command behind the program path, as they stand.
struct StressRequest : Request {
    class Serializer;

    QStringList words;

    std::unique_ptr<AbstractRequestSerializer> serializer() const override;
};

class StressRequest::Serializer : public AbstractRequestSerializer {
public:
    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override {
        auto request = std::make_unique<StressRequest>();
        request->words = arguments.mid(1);
        return request;
    }

    std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) override {
        auto request = std::make_unique<StressRequest>();
        for (const auto& word : value.at("words"))
            request->words.append(QString::fromStdString(word.get<std::string>()));
        return request;
    }

    QStringList toCli(const Request& request) const override {
        return QStringList(QStringLiteral("app-path-stub"))
               + dynamic_cast<const StressRequest&>(request).words;
    }

    nlohmann::json toJson(const Request& request) const override {
        auto words = nlohmann::json::array();
        for (const QString& word : dynamic_cast<const StressRequest&>(request).words)
            words.push_back(word.toStdString());
        return {{"words", words}};
    }
};

inline std::unique_ptr<AbstractRequestSerializer> StressRequest::serializer() const {
    return std::make_unique<Serializer>();
}

// What the services of one test did, shared by all of them and read by the test.
struct StressProbe {
    std::atomic<int> created{0};
    std::atomic<int> subscribed{0};
    std::atomic<int> released{0};
    std::atomic<long> emitted{0};
    // Completing it ends every "gate" command.
    rxcpp::subjects::subject<nlohmann::json> gate;
    std::mutex mutex;
    std::weak_ptr<int> lastToken;
};

// What a command of a stress script does; the first word behind the program path is its number.
enum class StressMode {
    Value,             // {"value": N} on the calling thread, then completes
    ValueOnOwnThread,  // the same from a thread of its own
    Silent,            // never emits, never ends; counts its release
    Endless,           // emits on a thread of its own until it is released
    Gate,              // ends when the probe's gate does
    ThrowInRun,        // run throws
    ThrowOnSubscribe,  // the stream throws where it is subscribed
    ThrowOnMainThread, // a value reaches the main thread, where the stream throws
    ThrowOnOwnThread,  // a value on a thread of its own, where the stream throws
};

inline int numberOf(const StressRequest& request) {
    return request.words.value(0).toInt();
}

inline rxcpp::observable<nlohmann::json> streamOf(StressMode mode, const StressRequest& request,
                                                  const std::shared_ptr<StressProbe>& probe) {
    using json = nlohmann::json;
    const int number = numberOf(request);
    switch (mode) {
    case StressMode::Value:
        return rxcpp::observable<>::just(json{{"value", number}}).as_dynamic();
    case StressMode::ValueOnOwnThread:
        return rxcpp::observable<>::create<json>([number](rxcpp::subscriber<json> subscriber) {
                   auto worker = rxcpp::schedulers::make_new_thread().create_worker();
                   subscriber.add(worker.get_subscription());
                   worker.schedule([subscriber, number](const rxcpp::schedulers::schedulable&) {
                       subscriber.on_next(json{{"value", number}});
                       subscriber.on_completed();
                   });
               })
            .as_dynamic();
    case StressMode::Silent:
        return rxcpp::observable<>::create<json>([probe](rxcpp::subscriber<json> subscriber) {
                   auto token = std::make_shared<int>(0);
                   {
                       std::lock_guard<std::mutex> lock(probe->mutex);
                       probe->lastToken = token;
                   }
                   ++probe->subscribed;
                   subscriber.add([probe, token] { ++probe->released; });
               })
            .as_dynamic();
    case StressMode::Endless:
        return rxcpp::observable<>::create<json>([probe](rxcpp::subscriber<json> subscriber) {
                   ++probe->subscribed;
                   auto worker = rxcpp::schedulers::make_new_thread().create_worker();
                   subscriber.add(worker.get_subscription());
                   subscriber.add([probe] { ++probe->released; });
                   auto tick = std::make_shared<std::function<void()>>();
                   *tick = [worker, subscriber, probe, weakTick = std::weak_ptr(tick)] {
                       if (!subscriber.is_subscribed())
                           return;
                       ++probe->emitted;
                       subscriber.on_next(json{{"tick", probe->emitted.load()}});
                       const auto next = weakTick.lock();
                       if (!next)
                           return;
                       worker.schedule(
                           worker.now() + std::chrono::milliseconds(1),
                           [next](const rxcpp::schedulers::schedulable&) { (*next)(); });
                   };
                   worker.schedule([tick](const rxcpp::schedulers::schedulable&) { (*tick)(); });
                   // The worker's own actions hold the function; the subscription holds the rest.
                   subscriber.add([tick] {});
               })
            .as_dynamic();
    case StressMode::Gate:
        return rxcpp::observable<>::create<json>([probe](rxcpp::subscriber<json> subscriber) {
                   ++probe->subscribed;
                   subscriber.add([probe] { ++probe->released; });
                   probe->gate.get_observable().subscribe(subscriber);
               })
            .as_dynamic();
    case StressMode::ThrowInRun:
        break;
    case StressMode::ThrowOnSubscribe:
        return rxcpp::observable<>::create<json>([](rxcpp::subscriber<json>) {
                   throw Error("stream failed where it was subscribed");
               })
            .as_dynamic();
    case StressMode::ThrowOnMainThread:
        return rxcpp::observable<>::just(json{{"value", number}})
            .observe_on(RxApp::instance()->mainThread())
            .map([](const json& value) -> json {
                if (value.is_object())
                    throw Error("stream failed on the main thread");
                return value;
            })
            .as_dynamic();
    case StressMode::ThrowOnOwnThread:
        return streamOf(StressMode::ValueOnOwnThread, request, probe)
            .map([](const json& value) -> json {
                if (value.is_object())
                    throw Error("stream failed on its own thread");
                return value;
            })
            .as_dynamic();
    }
    throw Error("run failed");
}

// A service that behaves as its mode says, for every request it is given.
class StressService : public AbstractService {
public:
    StressService(StressMode mode, std::shared_ptr<StressProbe> probe)
        : mode(mode)
        , probe(std::move(probe)) {
        ++this->probe->created;
    }

    using AbstractService::run;

    std::unique_ptr<AbstractRequestSerializer> requestSerializer() const override {
        return std::make_unique<StressRequest::Serializer>();
    }

    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override {
        if (mode == StressMode::ThrowInRun)
            throw Error("run failed");
        const auto mode = this->mode;
        const auto probe = this->probe;
        return requests
            .flat_map([mode, probe](const std::shared_ptr<Request>& request) {
                return streamOf(mode, dynamic_cast<const StressRequest&>(*request), probe);
            })
            .as_dynamic();
    }

private:
    StressMode mode;
    std::shared_ptr<StressProbe> probe;
};

// A loader that knows one service by each mode's name, sharing one probe, and "broken",
// whose factory throws.
inline void registerStressServices(ServiceLoader& loader,
                                   const std::shared_ptr<StressProbe>& probe) {
    const std::pair<const char*, StressMode> services[] = {
        {"value", StressMode::Value},
        {"value-on-own-thread", StressMode::ValueOnOwnThread},
        {"silent", StressMode::Silent},
        {"endless", StressMode::Endless},
        {"gate", StressMode::Gate},
        {"throw-in-run", StressMode::ThrowInRun},
        {"throw-on-subscribe", StressMode::ThrowOnSubscribe},
        {"throw-on-main-thread", StressMode::ThrowOnMainThread},
        {"throw-on-own-thread", StressMode::ThrowOnOwnThread},
    };
    for (const auto& [name, mode] : services) {
        loader.registerService(QString::fromLatin1(name), QString(),
                               [mode = mode, probe](std::weak_ptr<const ServiceLoader>) {
                                   return std::make_shared<StressService>(mode, probe);
                               });
    }
    loader.registerService(
        QStringLiteral("broken"), QString(),
        [](std::weak_ptr<const ServiceLoader>) -> std::shared_ptr<AbstractService> {
            throw Error("factory failed");
        });
}

} // namespace EditorService::Testing
