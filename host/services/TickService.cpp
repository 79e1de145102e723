#include "host/services/TickService.h"

#include "service/api/Error.h"

#include <chrono>

namespace {

struct Ticking {
    rxcpp::subscriber<nlohmann::json> subscriber;
    rxcpp::schedulers::worker worker;
    int count;
    std::chrono::milliseconds interval;
    rxcpp::schedulers::scheduler::clock_type::time_point due;
    int next = 1;
};

void scheduleNext(const std::shared_ptr<Ticking>& ticking) {
    ticking->due += ticking->interval;
    ticking->worker.schedule(ticking->due, [ticking](const rxcpp::schedulers::schedulable&) {
        ticking->subscriber.on_next(nlohmann::json{{"tick", ticking->next}});
        if (ticking->next == ticking->count) {
            ticking->subscriber.on_completed();
            return;
        }
        ++ticking->next;
        scheduleNext(ticking);
    });
}

rxcpp::observable<nlohmann::json> ticks(int count, int interval) {
    return rxcpp::observable<>::create<nlohmann::json>(
               [count, interval](rxcpp::subscriber<nlohmann::json> subscriber) {
                   if (count == 0) {
                       subscriber.on_completed();
                       return;
                   }
                   // The worker's thread ends with the subscription.
                   auto worker = rxcpp::schedulers::make_new_thread().create_worker();
                   subscriber.add(worker.get_subscription());
                   auto ticking = std::make_shared<Ticking>(
                       Ticking{subscriber, worker, count, std::chrono::milliseconds(interval),
                               worker.now()});
                   scheduleNext(ticking);
               })
        .as_dynamic();
}

} // namespace

QCommandLineOption TickRequest::countOption() {
    return QCommandLineOption(QStringLiteral("count"), QStringLiteral("How many ticks to emit."),
                              QStringLiteral("N"), QStringLiteral("3"));
}

QCommandLineOption TickRequest::intervalOption() {
    return QCommandLineOption(QStringLiteral("interval"),
                              QStringLiteral("Milliseconds before each tick."),
                              QStringLiteral("ms"), QStringLiteral("100"));
}

QString TickRequest::description() const {
    return QStringLiteral("Emit {\"tick\": i} for i from 1 to --count, one every --interval "
                          "milliseconds, on a thread of its own.");
}

void TickRequest::validateOnLoad() const {
    if (count < 0)
        throw EditorService::Error(
            QStringLiteral("--count must not be negative, is %1").arg(count).toStdString());
    if (interval < 0)
        throw EditorService::Error(
            QStringLiteral("--interval must not be negative, is %1").arg(interval).toStdString());
}

QString TickService::serviceId() {
    return QStringLiteral("tick");
}

rxcpp::observable<nlohmann::json> TickService::run(const rxcpp::observable<TickRequest>& requests) {
    return requests
        .flat_map([](const TickRequest& request) { return ticks(request.count, request.interval); })
        .as_dynamic();
}
