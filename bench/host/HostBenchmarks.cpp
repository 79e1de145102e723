#include "bench/support/BenchSupport.h"
#include "bench/support/Processes.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

// Whole processes, timed from spawn to exit, each round running the contenders back to back so
// that the machine's load falls on all of them alike; the medians are the figures.

namespace {

using Bench::isInstalled;
using Bench::median;
using Bench::Program;
using Bench::timeRun;

// /bin/true, a bare Qt core application and `reelsmith echo x`, in turn.
void StartUp(benchmark::State& state) {
    const int runs = int(state.range(0));
    const std::vector<Program> contenders{
        {{"/bin/true"}}, {{QT_FLOOR}}, {{REELSMITH_HOST, "echo", "x"}}};
    const char* const names[] = {"true_ms", "qt_ms", "host_ms"};
    for (auto _ : state) {
        std::vector<std::vector<double>> times(contenders.size());
        try {
            for (const auto& contender : contenders)
                timeRun(contender); // the first run pays for the page cache
            for (int i = 0; i < runs; ++i)
                for (std::size_t c = 0; c < contenders.size(); ++c)
                    times[c].push_back(timeRun(contenders[c]).count());
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
        for (std::size_t c = 0; c < contenders.size(); ++c)
            state.counters[names[c]] = median(times[c]) * 1e3;
    }
}
BENCHMARK(StartUp)->ArgNames({"runs"})->Arg(10)->Arg(30)->Iterations(1)->Unit(
    benchmark::kMillisecond);

// One `reelsmith script` of noop commands (the default --jobs=1) against `xargs -P 2 -n 1`
// running /bin/true once per command, and GNU parallel likewise where it is installed. Each
// rival runs once (a minute or more on a small machine); the host runs before, between and
// behind them, an odd number of times, and gives its median.
void AgainstRivals(benchmark::State& state) {
    const long commands = state.range(0);
    const Bench::TextFile script(Bench::repeatedLines(commands, QStringLiteral("noop")));
    const Bench::TextFile arguments(Bench::repeatedLines(commands, QStringLiteral("x")));
    const std::string input = arguments.path().toStdString();
    const Program host{{REELSMITH_HOST, "script", script.path().toStdString()}};
    std::vector<Program> rivals{{{"xargs", "-P", "2", "-n", "1", "/bin/true"}, input}};
    const bool withParallel = isInstalled("parallel");
    if (withParallel)
        rivals.push_back({{"parallel", "-j", "2", "-n", "1", "/bin/true"}, input});
    for (auto _ : state) {
        std::vector<double> hostRates;
        std::vector<double> rivalRates;
        try {
            hostRates.push_back(double(commands) / timeRun(host).count());
            for (const auto& rival : rivals) {
                rivalRates.push_back(double(commands) / timeRun(rival).count());
                hostRates.push_back(double(commands) / timeRun(host).count());
            }
            if (hostRates.size() % 2 == 0)
                hostRates.push_back(double(commands) / timeRun(host).count());
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
        state.counters["host_per_second"] = median(hostRates);
        state.counters["xargs_per_second"] = rivalRates[0];
        if (withParallel)
            state.counters["parallel_per_second"] = rivalRates[1];
    }
}
BENCHMARK(AgainstRivals)
    ->ArgNames({"commands"})
    ->Arg(10)
    ->Arg(10000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
