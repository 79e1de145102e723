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

// A clip as cameras and editors make them: 25 frames a second, 10 s, a key frame every 10 s
// (x264's default interval), with AAC audio; 1280x720 for the probes and thumbnails.
class Clip {
public:
    explicit Clip(const std::string& size = "1280x720") {
        path = directory.filePath(QString::fromStdString("clip" + size + ".mp4")).toStdString();
        timeRun(
            {{"ffmpeg",    "-nostdin", "-v",      "error",
              "-f",        "lavfi",    "-i",      "testsrc2=size=" + size + ":rate=25:duration=10",
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
        lines << QStringLiteral("thumbnail; %1; --output=%2; --at=%3; --overwrite")
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

// A 1080p clip, made once, for the export figures.
const Clip& largeClip() {
    static const Clip made("1920x1080");
    return made;
}

// What the export of a preset asks of libx264 and AAC: a constant rate factor of 23 at the
// encoder's default speed and threads, the preset's frame size and audio rate, MP4 with its
// index at the front.
Program ffmpegExport(const std::string& input, const std::string& output, int width, int height,
                     int audioBps) {
    return {{"ffmpeg",
             "-nostdin",
             "-v",
             "error",
             "-y",
             "-i",
             input,
             "-vf",
             "scale=" + std::to_string(width) + ":" + std::to_string(height),
             "-c:v",
             "libx264",
             "-crf",
             "23",
             "-pix_fmt",
             "yuv420p",
             "-c:a",
             "aac",
             "-b:a",
             std::to_string(audioBps),
             "-movflags",
             "+faststart",
             output}};
}

// The floor of an export: libx264 alone, with the settings of ffmpegExport, fed the clip's
// frames decoded and resized to width x height in advance (raw, in a file made before the
// clock starts), writing nothing.
class EncoderAlone {
public:
    EncoderAlone(const std::string& input, int width, int height) {
        const std::string size = std::to_string(width) + "x" + std::to_string(height);
        const std::string frames = directory.filePath("frames.yuv").toStdString();
        timeRun({{"ffmpeg", "-nostdin", "-v", "error", "-y", "-i", input, "-vf",
                  "scale=" + std::to_string(width) + ":" + std::to_string(height), "-pix_fmt",
                  "yuv420p", "-an", "-f", "rawvideo", frames}});
        program = {{"ffmpeg",  "-nostdin", "-v",   "error", "-f", "rawvideo", "-pix_fmt",
                    "yuv420p", "-s",       size,   "-r",    "25", "-i",       frames,
                    "-c:v",    "libx264",  "-crf", "23",    "-f", "null",     "-"}};
    }

    QTemporaryDir directory;
    Program program;
};

// The floor of the 1080p export, its frames made once for every repetition.
const EncoderAlone& exportFloor() {
    static const EncoderAlone made(largeClip().path, 1920, 1080);
    return made;
}

// One export of the 1080p clip with the 1080p preset against ffmpeg with the same settings,
// time and peak memory, and against the floor of its encoder alone.
void ExportAgainstFfmpeg(benchmark::State& state) {
    const auto& input = largeClip();
    const Program host{{REELSMITH_HOST, "export", input.path,
                        "--output=" + input.file("ours.mp4").toStdString(), "--preset=1080p",
                        "--overwrite"}};
    const Program ffmpeg =
        ffmpegExport(input.path, input.file("theirs.mp4").toStdString(), 1920, 1080, 256000);
    for (auto _ : state) {
        try {
            const auto ours = Bench::measureRun(host);
            const auto theirs = Bench::measureRun(ffmpeg);
            const auto least = timeRun(exportFloor().program);
            state.counters["host_seconds"] = ours.time.count();
            state.counters["ffmpeg_seconds"] = theirs.time.count();
            state.counters["floor_seconds"] = least.count();
            state.counters["host_peak_kib"] = double(ours.peakKib);
            state.counters["ffmpeg_peak_kib"] = double(theirs.peakKib);
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
    }
}
BENCHMARK(ExportAgainstFfmpeg)->Iterations(1)->Unit(benchmark::kMillisecond);

// Eight 720p exports of the 1080p clip in one script with --render-jobs=2 against
// `xargs -P2` running eight ffmpeg processes with the same settings.
void EightExportsAgainstXargsFfmpeg(benchmark::State& state) {
    const auto& input = largeClip();
    QStringList lines;
    QString commands;
    for (int i = 0; i < 8; ++i) {
        lines << QStringLiteral("export; %1; --output=%2; --preset=720p; --overwrite")
                     .arg(QString::fromStdString(input.path),
                          input.file(QStringLiteral("ours-%1.mp4").arg(i)));
        const Program rival = ffmpegExport(
            input.path, input.file(QStringLiteral("theirs-%1.mp4").arg(i)).toStdString(), 1280, 720,
            192000);
        QStringList words;
        // xargs gives each line's words to one ffmpeg.
        for (std::size_t word = 1; word < rival.arguments.size(); ++word)
            words << QString::fromStdString(rival.arguments[word]);
        commands += words.join(' ') + '\n';
    }
    const Bench::TextFile script(lines);
    const Bench::TextFile jobs(commands.split('\n', Qt::SkipEmptyParts));
    const Program host{
        {REELSMITH_HOST, "--render-jobs=2", "script", script.path().toStdString(), "--jobs=0"}};
    const Program xargs{{"xargs", "-P2", "-L1", "-a", jobs.path().toStdString(), "ffmpeg"}};
    for (auto _ : state) {
        try {
            state.counters["host_seconds"] = timeRun(host).count();
            state.counters["xargs_seconds"] = timeRun(xargs).count();
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
    }
}
BENCHMARK(EightExportsAgainstXargsFfmpeg)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
