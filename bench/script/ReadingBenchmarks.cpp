#include "bench/support/BenchSupport.h"
#include "service/CLIUtils.h"

#include <QFile>
#include <QTextStream>
#include <benchmark/benchmark.h>
#include <glog/logging.h>

// Lines per second: the command source over a script with comments, blank lines and
// separators, against a bare QTextStream::readLine loop over the same file. The command source
// runs with its log line written (to wherever stderr points) and filtered by glog's level.

namespace {

void ReadCommandScript(benchmark::State& state) {
    const bool logged = state.range(0) != 0;
    const long lines = state.range(1);
    const Bench::TextFile script(Bench::mixedScriptLines(lines));
    const Bench::MinimumLogLevel level(logged ? google::GLOG_INFO : google::GLOG_WARNING);
    for (auto _ : state) {
        long commands = 0;
        bool ended = false;
        CLIUtils::openCommandScript(script.path())
            .subscribe([&commands](const QStringList&) { ++commands; },
                       [&ended](std::exception_ptr) { ended = true; }, [&ended] { ended = true; });
        Bench::spinUntil([&ended] { return ended; });
        benchmark::DoNotOptimize(commands);
    }
    state.SetItemsProcessed(state.iterations() * lines);
}
BENCHMARK(ReadCommandScript)
    ->ArgNames({"logged", "lines"})
    ->ArgsProduct({{1, 0}, {1000, 1000000}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Reads the script of `lines` lines as the command source opens it, handing each line to
// `use`, once per iteration; lines per second.
template <class Use> void readEachLine(benchmark::State& state, Use use) {
    const long lines = state.range(0);
    const Bench::TextFile script(Bench::mixedScriptLines(lines));
    for (auto _ : state) {
        QFile file(script.path());
        file.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered);
        QTextStream stream(&file);
        long read = 0;
        for (; !stream.atEnd(); ++read)
            use(stream.readLine());
        if (read != lines) {
            state.SkipWithError("the loop did not read every line");
            break;
        }
    }
    state.SetItemsProcessed(state.iterations() * lines);
}

// Each line read and dropped.
void ReadLinesBare(benchmark::State& state) {
    readEachLine(state, [](QString line) { benchmark::DoNotOptimize(line); });
}
BENCHMARK(ReadLinesBare)
    ->ArgNames({"lines"})
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The string work that each line needs whatever carries it, with no stream: the floor under
// the command source. Every line is simplified, tested, split on ';', and each command gets the
// program path in front.
void SplitLinesBare(benchmark::State& state) {
    const QString program = Bench::applicationPath();
    readEachLine(state, [&program](const QString& raw) {
        const QString line = raw.simplified();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            return;
        QStringList parts = line.split(QLatin1Char(';'), Qt::SkipEmptyParts);
        for (QString& part : parts)
            part = part.simplified();
        if (parts.isEmpty())
            return;
        QStringList command(program);
        command += parts;
        benchmark::DoNotOptimize(command);
    });
}
BENCHMARK(SplitLinesBare)
    ->ArgNames({"lines"})
    ->Arg(1000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
