#include "bench/support/BenchSupport.h"
#include "host/services/NoopService.h"
#include "host/services/TickService.h"
#include "platform/rxapp/RxApp.h"
#include "service/api/ServiceLoader.h"
#include "service/services/ScriptService.h"

#include <benchmark/benchmark.h>

// Resident memory per queued command: a script whose first command never ends, run with
// --jobs=1, so that every other command waits in the queue. Meant to run in a process of its
// own (bench/compare does): the peak is the process's.

using namespace EditorService;

namespace {

void QueuedCommandMemory(benchmark::State& state) {
    const long commands = state.range(0);
    QStringList lines = Bench::repeatedLines(commands - 1, QStringLiteral("noop"));
    lines.prepend(QStringLiteral("tick; --count=1; --interval=100000000"));
    const Bench::TextFile script(lines);
    auto loader = std::make_shared<ServiceLoader>();
    loader->registerService(
        NoopService::serviceId(), QStringLiteral("noop"),
        [](std::weak_ptr<const ServiceLoader>) { return std::make_shared<NoopService>(); });
    loader->registerService(
        TickService::serviceId(), QStringLiteral("tick"),
        [](std::weak_ptr<const ServiceLoader>) { return std::make_shared<TickService>(); });
    const QStringList arguments{Bench::applicationPath(), QStringLiteral("--jobs=1"),
                                script.path()};
    for (auto _ : state) {
        state.PauseTiming();
        Bench::spinFor(std::chrono::milliseconds(10));
        Bench::resetPeakResident();
        const long residentBefore = Bench::statusBytes("VmRSS");
        state.ResumeTiming();

        rxcpp::composite_subscription running;
        bool failed = false;
        ScriptService(loader).run(arguments).subscribe(
            running, [](const nlohmann::json&) {}, [&failed](std::exception_ptr) { failed = true; },
            [] {});
        // The file was read inside subscribe; the commands reach the limiter's queue in one
        // turn of the main thread, which this marker follows.
        bool queued = false;
        RxApp::instance()->mainThread().create_coordinator().get_worker().schedule(
            [&queued](const rxcpp::schedulers::schedulable&) { queued = true; });
        Bench::spinUntil([&queued] { return queued; });
        Bench::spinFor(std::chrono::milliseconds(50));

        state.PauseTiming();
        const long peak = Bench::statusBytes("VmHWM");
        const long resident = Bench::statusBytes("VmRSS");
        state.counters["peak_bytes_per_command"] = double(peak - residentBefore) / commands;
        state.counters["resident_bytes_per_command"] = double(resident - residentBefore) / commands;
        running.unsubscribe();
        state.ResumeTiming();
        if (failed) {
            state.SkipWithError("the script failed");
            break;
        }
    }
}
BENCHMARK(QueuedCommandMemory)
    ->ArgNames({"commands"})
    ->Arg(1000)
    ->Arg(1000000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
