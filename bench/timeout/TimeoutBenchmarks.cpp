#include "bench/support/BenchSupport.h"
#include "host/services/NoopService.h"
#include "platform/rxapp/RxApp.h"
#include "service/services/TimeoutProxyService.h"
#include "service/services/TimeoutRequest.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <vector>

// Expiry lateness: the time from a limit's end to the callback, as a fraction of the limit,
// over many expiries of services that never say anything. Chains start a few milliseconds apart
// so that expiries don't pile onto the two cores at one instant. And values per second through
// a limited chain against the same stream with no limit.

using namespace EditorService;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto startSpacing = std::chrono::milliseconds(5);

rxcpp::observable<nlohmann::json> silence() {
    return rxcpp::observable<>::create<nlohmann::json>([](rxcpp::subscriber<nlohmann::json>) {});
}

class SilentService : public AbstractService {
public:
    using AbstractService::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override {
        return requests.flat_map([](const std::shared_ptr<Request>&) { return silence(); })
            .as_dynamic();
    }
};

// Emits `count` values like the host's tick service, {"tick": i}, on the subscribing thread,
// then completes.
class BurstService : public AbstractService {
public:
    explicit BurstService(long count)
        : count(count) {}

    using AbstractService::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override {
        const long values = count;
        return requests
            .flat_map([values](const std::shared_ptr<Request>&) {
                return rxcpp::observable<>::create<nlohmann::json>(
                    [values](rxcpp::subscriber<nlohmann::json> subscriber) {
                        for (long i = 0; i < values && subscriber.is_subscribed(); ++i)
                            subscriber.on_next(nlohmann::json{{"tick", i}});
                        subscriber.on_completed();
                    });
            })
            .as_dynamic();
    }

private:
    long count;
};

// When each chain was subscribed and when its expiry reached the callback.
struct ExpiryLog {
    explicit ExpiryLog(int chains)
        : armedAt(chains)
        , firedAt(chains) {}

    std::mutex lock;
    std::vector<Clock::time_point> armedAt;
    std::vector<Clock::time_point> firedAt;
    std::atomic<int> fired{0};
    std::atomic<int> failed{0};
};

// Lateness of each expiry past its limit, as fractions of the limit, reported as counters.
void reportLateness(benchmark::State& state, const ExpiryLog& log, Clock::duration limit) {
    std::vector<double> lateness;
    for (std::size_t i = 0; i < log.armedAt.size(); ++i)
        lateness.push_back(std::chrono::duration<double>(log.firedAt[i] - log.armedAt[i] - limit)
                           / std::chrono::duration<double>(limit));
    std::sort(lateness.begin(), lateness.end());
    const auto at = [&lateness](double quantile) {
        const auto rank = static_cast<std::size_t>(quantile * double(lateness.size() - 1) + 0.5);
        return lateness[rank];
    };
    state.counters["lateness_median"] = at(0.5);
    state.counters["lateness_p99"] = at(0.99);
    state.counters["lateness_max"] = lateness.back();
    state.counters["limit_ms"] = std::chrono::duration<double, std::milli>(limit).count();
}

// Starts `chains` silent chains, `startSpacing` apart, each made by `start(i)`, and waits for
// every one of them to fail.
template <class Start> void startSpaced(int chains, ExpiryLog& log, Start start) {
    const auto begin = Clock::now();
    for (int i = 0; i < chains; ++i) {
        Bench::spinUntil([&] { return Clock::now() >= begin + i * startSpacing; });
        start(i);
    }
    Bench::spinUntil([&log, chains] { return log.failed.load() == chains; });
}

// Through TimeoutProxyService, whose limits are whole seconds.
void ProxyExpiryLateness(benchmark::State& state) {
    const int seconds = int(state.range(0)) / 1000;
    const int chains = int(state.range(1));
    for (auto _ : state) {
        ExpiryLog log(chains);
        std::map<const Request*, int> chainOf;
        std::vector<std::shared_ptr<TimeoutRequest>> requests;
        for (int i = 0; i < chains; ++i) {
            auto request = std::make_shared<TimeoutRequest>();
            request->request = std::make_shared<NoopRequest>();
            request->timeout = seconds;
            chainOf[request->request.get()] = i;
            requests.push_back(request);
        }
        TimeoutProxyService proxy(std::make_shared<SilentService>(),
                                  [&log, &chainOf](const Request& wrapped) {
                                      const auto now = Clock::now();
                                      std::lock_guard<std::mutex> guard(log.lock);
                                      log.firedAt[chainOf.at(&wrapped)] = now;
                                      ++log.fired;
                                  });
        startSpaced(chains, log, [&](int i) {
            log.armedAt[i] = Clock::now();
            proxy.run(std::shared_ptr<Request>(requests[i]))
                .subscribe([](const nlohmann::json&) {},
                           [&log](std::exception_ptr) { ++log.failed; });
        });
        if (log.fired != chains) {
            state.SkipWithError("not every limit called back once");
            return;
        }
        reportLateness(state, log, std::chrono::seconds(seconds));
    }
}
BENCHMARK(ProxyExpiryLateness)
    ->ArgNames({"limit_ms", "expiries"})
    ->Args({1000, 10})
    ->Args({1000, 200})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The proxy's own chain around a silent stream -- timeout on RxApp::newThread, the callback on
// the error path, observe_on the main thread -- built here for limits below a second.
void TimerExpiryLateness(benchmark::State& state) {
    const auto limit = std::chrono::milliseconds(state.range(0));
    const int chains = int(state.range(1));
    for (auto _ : state) {
        ExpiryLog log(chains);
        startSpaced(chains, log, [&](int i) {
            const auto callback = [&log, i] {
                const auto now = Clock::now();
                std::lock_guard<std::mutex> guard(log.lock);
                log.firedAt[i] = now;
                ++log.fired;
            };
            log.armedAt[i] = Clock::now();
            silence()
                .timeout(limit, RxApp::instance()->newThread())
                .on_error_resume_next(
                    [callback](std::exception_ptr error) -> rxcpp::observable<nlohmann::json> {
                        try {
                            std::rethrow_exception(error);
                        } catch (const rxcpp::timeout_error&) {
                            callback();
                            throw;
                        }
                    })
                .observe_on(RxApp::instance()->mainThread())
                .subscribe([](const nlohmann::json&) {},
                           [&log](std::exception_ptr) { ++log.failed; });
        });
        if (log.fired != chains) {
            state.SkipWithError("not every limit called back once");
            return;
        }
        reportLateness(state, log, limit);
    }
}
BENCHMARK(TimerExpiryLateness)
    ->ArgNames({"limit_ms", "expiries"})
    ->Args({100, 10})
    ->Args({100, 200})
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Values per second of one burst through the proxy, with a limit (an hour, never reached) and
// without one.
void ProxyThroughput(benchmark::State& state) {
    const bool limited = state.range(0) != 0;
    const long values = state.range(1);
    TimeoutProxyService proxy(std::make_shared<BurstService>(values), [](const Request&) {});
    auto request = std::make_shared<TimeoutRequest>();
    request->request = std::make_shared<NoopRequest>();
    if (limited)
        request->timeout = 3600;
    for (auto _ : state) {
        Bench::Outcome outcome;
        Bench::runToEnd(proxy.run(std::shared_ptr<Request>(request)), outcome);
        if (outcome.error || outcome.values != values) {
            state.SkipWithError("the burst did not arrive whole");
            return;
        }
    }
    state.SetItemsProcessed(state.iterations() * values);
}
BENCHMARK(ProxyThroughput)
    ->ArgNames({"limited", "values"})
    ->ArgsProduct({{1, 0}, {10, 100000}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
