#include "platform/rxapp/RxApp.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QMetaObject>

#include <benchmark/benchmark.h>

#include <atomic>
#include <functional>
#include <thread>

// Hops per second onto the Qt main thread. The baselines: a plain std::function call (no hop at
// all) and Qt's own queued call, one posted event per action.

namespace {

constexpr int hopsPerRun = 10000;

void spinUntil(const std::function<bool()>& done) {
    while (!done())
        QCoreApplication::processEvents(QEventLoop::AllEvents);
}

void PlainFunctionCall(benchmark::State& state) {
    int ran = 0;
    std::function<void()> action = [&ran] { ++ran; };
    for (auto _ : state) {
        for (int i = 0; i < hopsPerRun; ++i)
            action();
        benchmark::DoNotOptimize(ran);
    }
    state.SetItemsProcessed(state.iterations() * hopsPerRun);
}
BENCHMARK(PlainFunctionCall);

void QtQueuedInvoke(benchmark::State& state) {
    int ran = 0;
    for (auto _ : state) {
        ran = 0;
        for (int i = 0; i < hopsPerRun; ++i)
            QMetaObject::invokeMethod(
                QCoreApplication::instance(), [&ran] { ++ran; }, Qt::QueuedConnection);
        spinUntil([&] { return ran == hopsPerRun; });
    }
    state.SetItemsProcessed(state.iterations() * hopsPerRun);
}
BENCHMARK(QtQueuedInvoke);

void MainThreadWorkerHop(benchmark::State& state) {
    auto worker = RxApp::instance()->mainThread().create_coordinator().get_worker();
    int ran = 0;
    for (auto _ : state) {
        ran = 0;
        for (int i = 0; i < hopsPerRun; ++i)
            worker.schedule([&ran](const rxcpp::schedulers::schedulable&) { ++ran; });
        spinUntil([&] { return ran == hopsPerRun; });
    }
    state.SetItemsProcessed(state.iterations() * hopsPerRun);
    worker.unsubscribe();
}
BENCHMARK(MainThreadWorkerHop);

// Values from another thread through observe_on(mainThread()), while the main thread spins.
void ObserveOnMainThreadFromAnotherThread(benchmark::State& state) {
    for (auto _ : state) {
        rxcpp::subjects::subject<int> source;
        std::atomic<int> received{0};
        source.get_observable()
            .observe_on(RxApp::instance()->mainThread())
            .subscribe([&received](int) { ++received; }, [](std::exception_ptr) {});
        std::thread producer([&] {
            auto input = source.get_subscriber();
            for (int i = 0; i < hopsPerRun; ++i)
                input.on_next(i);
        });
        spinUntil([&] { return received.load() == hopsPerRun; });
        producer.join();
    }
    state.SetItemsProcessed(state.iterations() * hopsPerRun);
}
BENCHMARK(ObserveOnMainThreadFromAnotherThread);

} // namespace
