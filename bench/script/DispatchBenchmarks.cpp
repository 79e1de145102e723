#include "bench/support/BenchSupport.h"
#include "host/services/NoopService.h"
#include "service/api/ServiceLoader.h"
#include "service/services/ScriptService.h"

#include <benchmark/benchmark.h>
#include <glog/logging.h>

// Commands per second: a script of noop commands through the script service, against a plain
// loop that makes and runs the same services itself. The script's log line per command goes to
// stderr, as in the host, or is filtered by glog's level; the plain loop writes the same line
// per command, or none, so that each is measured against a floor doing the same required work.

using namespace EditorService;

namespace {

std::shared_ptr<ServiceLoader> noopLoader() {
    auto loader = std::make_shared<ServiceLoader>();
    loader->registerService(
        NoopService::serviceId(), QStringLiteral("noop"),
        [](std::weak_ptr<const ServiceLoader>) { return std::make_shared<NoopService>(); });
    return loader;
}

void ScriptDispatch(benchmark::State& state) {
    const int jobs = static_cast<int>(state.range(0));
    const bool logged = state.range(1) != 0;
    const long commands = state.range(2);
    const Bench::MinimumLogLevel level(logged ? google::GLOG_INFO : google::GLOG_WARNING);
    const Bench::TextFile script(Bench::repeatedLines(commands, QStringLiteral("noop")));
    const auto loader = noopLoader();
    const auto service = std::make_shared<ScriptService>(loader);
    const QStringList arguments{Bench::applicationPath(), QStringLiteral("--jobs=%1").arg(jobs),
                                script.path()};
    for (auto _ : state) {
        Bench::Outcome outcome;
        Bench::runToEnd(service->run(arguments), outcome);
        if (outcome.error || outcome.values != commands) {
            state.SkipWithError("the script did not deliver one value per command");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * commands);
}
BENCHMARK(ScriptDispatch)
    ->ArgNames({"jobs", "logged", "commands"})
    ->ArgsProduct({{0, 1, 8}, {1, 0}, {1000, 100000}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The same services made and run one after another, with no script, limiter or hop; with
// `logged`, each command first writes the script's log line for it, through glog to stderr.
void PlainDispatch(benchmark::State& state) {
    const bool logged = state.range(0) != 0;
    const long commands = state.range(1);
    const Bench::MinimumLogLevel level(logged ? google::GLOG_INFO : google::GLOG_WARNING);
    const auto loader = noopLoader();
    const QStringList arguments{Bench::applicationPath()};
    const QString name = NoopService::serviceId();
    for (auto _ : state) {
        long values = 0;
        for (long i = 0; i < commands; ++i) {
            if (logged)
                LOG(INFO) << "Processing command: " << name.toStdString();
            loader->createService(name)->run(arguments).subscribe(
                [&values](const nlohmann::json&) { ++values; });
        }
        if (values != commands) {
            state.SkipWithError("the loop did not deliver one value per command");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * commands);
}
BENCHMARK(PlainDispatch)
    ->ArgNames({"logged", "commands"})
    ->ArgsProduct({{1, 0}, {1000, 100000}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
