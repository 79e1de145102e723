#include "bench/support/BenchSupport.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// Whole processes, timed from spawn to exit, each round running the contenders back to back so
// that the machine's load falls on all of them alike; the medians are the figures.

extern char** environ;

namespace {

using Seconds = std::chrono::duration<double>;

struct Program {
    std::vector<std::string> arguments;
    std::string input = "/dev/null";
};

// Runs the program with stdout and stderr thrown away; throws unless it exits with 0.
Seconds timeRun(const Program& program) {
    std::vector<char*> argv;
    for (const auto& argument : program.arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, 0, program.input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int spawned = posix_spawnp(&child, argv[0], &files, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (spawned != 0)
        throw std::runtime_error("cannot start " + program.arguments.front());
    int status = 0;
    waitpid(child, &status, 0);
    const auto end = std::chrono::steady_clock::now();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(program.arguments.front() + " failed");
    return end - begin;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

bool isInstalled(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::string directories = path ? path : "/usr/bin:/bin";
    std::size_t from = 0;
    while (from <= directories.size()) {
        const std::size_t to = std::min(directories.find(':', from), directories.size());
        const std::string candidate = directories.substr(from, to - from) + "/" + program;
        if (access(candidate.c_str(), X_OK) == 0)
            return true;
        from = to + 1;
    }
    return false;
}

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
