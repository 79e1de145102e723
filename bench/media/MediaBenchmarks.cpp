#include "bench/support/BenchSupport.h"
#include "bench/support/Processes.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QTemporaryDir>
#include <string>
#include <vector>

// Each figure runs one `reelsmith script` against the same work done by one ffmpeg or ffprobe
// process per command, with the same settings, back to back in one run.

namespace {

using Bench::Program;
using Bench::timeRun;

// A clip as cameras and editors make them: 1280x720, 25 frames a second, 10 s, a key frame
// every 10 s (x264's default interval), with AAC audio.
class Clip {
public:
    Clip() {
        path = directory.filePath("clip.mp4").toStdString();
        timeRun({{"ffmpeg",    "-nostdin", "-v",      "error",
                  "-f",        "lavfi",    "-i",      "testsrc2=size=1280x720:rate=25:duration=10",
                  "-f",        "lavfi",    "-i",      "sine=sample_rate=48000:duration=10",
                  "-c:v",      "libx264",  "-preset", "veryfast",
                  "-pix_fmt",  "yuv420p",  "-c:a",    "aac",
                  "-shortest", path}});
    }

    QString file(const QString& name) const { return directory.filePath(name); }

    QTemporaryDir directory;
    std::string path;
};

const Clip& clip() {
    static const Clip made;
    return made;
}

// The times of `count` thumbnails spread over the clip, in the order a contact sheet asks.
std::vector<long> thumbnailTimes(long count) {
    std::vector<long> times;
    for (long i = 0; i < count; ++i)
        times.push_back(i * 9900 / count);
    return times;
}

std::string seconds(long milliseconds) {
    return std::to_string(milliseconds / 1000) + "." + std::to_string(milliseconds % 1000 / 100)
           + std::to_string(milliseconds % 100 / 10) + std::to_string(milliseconds % 10);
}

// One `reelsmith script` of `count` probes against `count` ffprobe processes, each asked for
// the format and the streams, as the probe service gives them.
void ProbeAgainstFfprobe(benchmark::State& state) {
    const long count = state.range(0);
    const QString line = QStringLiteral("probe; ") + QString::fromStdString(clip().path);
    const Bench::TextFile script(Bench::repeatedLines(count, line));
    const Program host{{REELSMITH_HOST, "script", script.path().toStdString()}};
    const Program ffprobe{
        {"ffprobe", "-v", "error", "-show_format", "-show_streams", "-of", "json", clip().path}};
    for (auto _ : state) {
        try {
            timeRun(host);
            const double ours = timeRun(host).count();
            double theirs = 0;
            for (long i = 0; i < count; ++i)
                theirs += timeRun(ffprobe).count();
            state.counters["host_per_second"] = double(count) / ours;
            state.counters["ffprobe_per_second"] = double(count) / theirs;
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
    }
}
BENCHMARK(ProbeAgainstFfprobe)
    ->ArgNames({"probes"})
    ->Arg(5)
    ->Arg(500)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

// `count` thumbnails of the clip in one script, with the decoded-stream cache (the default) and
// without it (--cache-ttl=0), against `count` processes of `ffmpeg -ss T -i clip -frames:v 1`.
void ThumbnailsAgainstFfmpeg(benchmark::State& state) {
    const long count = state.range(0);
    QStringList lines;
    std::vector<Program> rivals;
    for (const long at : thumbnailTimes(count)) {
        const QString output = clip().file(QStringLiteral("ours-%1.png").arg(at));
        lines << QStringLiteral("thumbnail; %1; --output=%2; --at=%3")
                     .arg(QString::fromStdString(clip().path), output, QString::number(at));
        rivals.push_back({{"ffmpeg", "-nostdin", "-v", "error", "-y", "-ss", seconds(at), "-i",
                           clip().path, "-frames:v", "1",
                           clip().file(QStringLiteral("theirs-%1.png").arg(at)).toStdString()}});
    }
    const Bench::TextFile script(lines);
    const Program cached{{REELSMITH_HOST, "script", script.path().toStdString()}};
    const Program uncached{
        {REELSMITH_HOST, "--cache-ttl=0", "script", script.path().toStdString()}};
    for (auto _ : state) {
        try {
            timeRun(cached);
            const double withCache = timeRun(cached).count();
            const double withoutCache = timeRun(uncached).count();
            double theirs = 0;
            for (const auto& rival : rivals)
                theirs += timeRun(rival).count();
            state.counters["cached_per_second"] = double(count) / withCache;
            state.counters["uncached_per_second"] = double(count) / withoutCache;
            state.counters["ffmpeg_per_second"] = double(count) / theirs;
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
    }
}
BENCHMARK(ThumbnailsAgainstFfmpeg)
    ->ArgNames({"thumbnails"})
    ->Arg(5)
    ->Arg(100)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

} // namespace
