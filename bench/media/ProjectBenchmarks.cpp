#include "bench/support/Processes.h"
#include "tests/support/BrightSpot.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <string>
#include <thread>
#include <vector>

// Rendering a project against the engines people render edits with today, each given the same
// edit, encoder and settings, back to back in one run: MLT's melt (when installed), ffmpeg with
// the edit as one filter graph, and our own export of a plain clip of the project's length.

namespace {

using Bench::measureRun;
using Bench::Program;
using Bench::timeRun;
using EditorService::Testing::easeInOut;
using EditorService::Testing::placedAt;
using EditorService::Testing::rmsDistance;
using EditorService::Testing::shownAt;
using EditorService::Testing::ShownRect;
using EditorService::Testing::spotCentres;
using EditorService::Testing::SpotPoint;

std::string text(int value) {
    return std::to_string(value);
}

void ffmpeg(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"ffmpeg", "-nostdin", "-v", "error", "-y"});
    timeRun({arguments});
}

void writeText(const std::string& path, const std::string& content) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        throw std::runtime_error("cannot write " + path);
    file.write(content.data(), static_cast<qint64>(content.size()));
}

// A clip as cameras make them: 25 frames a second, H.264 and AAC (a tone of `hertz`), its
// pictures tinted by `hue` so that clips differ.
void makeClip(const std::string& path, const std::string& size, int seconds, int hue, int hertz) {
    ffmpeg({"-f", "lavfi", "-i",
            "testsrc2=size=" + size + ":rate=25:duration=" + text(seconds) + ",hue=h=" + text(hue),
            "-f", "lavfi", "-i",
            "sine=frequency=" + text(hertz) + ":sample_rate=48000:duration=" + text(seconds),
            "-c:v", "libx264", "-preset", "veryfast", "-pix_fmt", "yuv420p", "-c:a", "aac",
            "-shortest", path});
}

// The edit: three 8 s 1080p clips, each crossing into the next in 1 s (22 s in all), a title
// from 0.5 s to 3.5 s, and music at -6 dB faded in over 1 s and out over the last 2 s; rendered
// to 1280x720 at 25 frames a second with the 720p preset's settings: libx264 at a constant rate
// factor of 23 and its default speed, AAC at 192 kb/s, MP4 with its index at the front.
class Edit {
public:
    Edit() {
        for (int i = 0; i < 3; ++i)
            makeClip(file("clip" + text(i) + ".mp4"), "1920x1080", 8, 120 * i, 300 + 200 * i);
        makeClip(file("plain.mp4"), "1920x1080", 22, 0, 300);
        ffmpeg({"-f", "lavfi", "-i", "sine=frequency=220:sample_rate=48000:duration=30", "-ac", "2",
                file("music.wav")});
        writeText(file("edit.json"), project());
        writeText(file("edit.mlt"), mltProject());
        writeText(file("graph.txt"), filterGraph());
    }

    std::string file(const std::string& name) const {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }

    Program ours() const {
        return {{REELSMITH_HOST, "export", file("edit.json"), "--output=" + file("ours.mp4"),
                 "--preset=720p", "--overwrite"}};
    }

    Program plain() const {
        return {{REELSMITH_HOST, "export", file("plain.mp4"), "--output=" + file("plain-out.mp4"),
                 "--preset=720p", "--overwrite"}};
    }

    // melt's frame threads, as many as the cores, frames never dropped (a negative real_time).
    Program melt() const {
        const int cores = static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
        return {{"melt", "-quiet", file("edit.mlt"), "-consumer", "avformat:" + file("melt.mp4"),
                 "vcodec=libx264", "crf=23", "pix_fmt=yuv420p", "acodec=aac", "ab=192k",
                 "movflags=+faststart", "real_time=-" + text(cores)}};
    }

    Program ffmpegGraph() const {
        std::vector<std::string> arguments{"ffmpeg", "-nostdin", "-v", "error", "-y"};
        for (const char* input : {"clip0.mp4", "clip1.mp4", "clip2.mp4", "music.wav"})
            arguments.insert(arguments.end(), {"-i", file(input)});
        arguments.insert(arguments.end(),
                         {"-filter_complex_script", file("graph.txt"), "-map", "[v]", "-map", "[a]",
                          "-c:v", "libx264", "-crf", "23", "-pix_fmt", "yuv420p", "-c:a", "aac",
                          "-b:a", "192000", "-movflags", "+faststart", file("ffmpeg.mp4")});
        return {arguments};
    }

private:
    static std::string project() {
        return R"({"reelsmith_project": 1,
 "output": {"width": 1280, "height": 720, "frame_rate": "25/1", "sample_rate": 48000},
 "tracks": [
  {"type": "video", "clips": [
    {"source": "clip0.mp4"},
    {"source": "clip1.mp4", "transition": {"type": "fade", "duration_ms": 1000}},
    {"source": "clip2.mp4", "transition": {"type": "fade", "duration_ms": 1000}}]},
  {"type": "overlay", "clips": [
    {"text": "Summer 2026", "start_ms": 500, "duration_ms": 3000, "style": {"size": 60}}]},
  {"type": "audio", "clips": [
    {"source": "music.wav", "volume_db": -6, "fade_in_ms": 1000, "fade_out_ms": 2000}]}]})";
    }

    // As melt's own -mix writes a crossfade: a tractor of the two clips' overlapping frames
    // with a luma (a dissolve) and a mix transition, between the clips' other frames.
    static std::string mltCrossing(const std::string& name, const std::string& out,
                                   const std::string& in) {
        const std::string tracks = "a_track\">0</property><property name=\"b_track\">1</property>";
        return "<tractor id=\"" + name + "\" in=\"0\" out=\"24\"><track producer=\"" + out
               + "\" in=\"175\" out=\"199\"/><track producer=\"" + in
               + "\" in=\"0\" out=\"24\"/><transition out=\"24\"><property name=\"" + tracks
               + "<property name=\"mlt_service\">luma</property></transition>"
                 "<transition out=\"24\"><property name=\""
               + tracks
               + "<property name=\"start\">-1</property><property "
                 "name=\"mlt_service\">mix</property></transition></tractor>\n";
    }

    static std::string mltProject() {
        std::string xml = R"(<?xml version="1.0" encoding="utf-8"?>
<mlt LC_NUMERIC="C">
<profile width="1280" height="720" progressive="1" sample_aspect_num="1" sample_aspect_den="1"
 display_aspect_num="16" display_aspect_den="9" frame_rate_num="25" frame_rate_den="1"
 colorspace="709"/>
)";
        for (const char* clip : {"clip0", "clip1", "clip2"})
            xml += std::string("<producer id=\"") + clip + "\" in=\"0\" out=\"199\"><property "
                   + "name=\"resource\">" + clip + ".mp4</property></producer>\n";
        xml += mltCrossing("cross0", "clip0", "clip1") + mltCrossing("cross1", "clip1", "clip2");
        xml += R"(<playlist id="sequence">
 <entry producer="clip0" in="0" out="174"/><entry producer="cross0" in="0" out="24"/>
 <entry producer="clip1" in="25" out="174"/><entry producer="cross1" in="0" out="24"/>
 <entry producer="clip2" in="25" out="199"/>
</playlist>
<producer id="music" in="0" out="549"><property name="resource">music.wav</property>
 <property name="hide">video</property>
 <filter><property name="mlt_service">volume</property>
  <property name="level">0=-60;25=-6;499=-6;549=-60</property></filter>
</producer>
<playlist id="score"><entry producer="music" in="0" out="549"/></playlist>
<tractor id="edit" in="0" out="549">
 <multitrack><track producer="sequence"/><track producer="score"/></multitrack>
 <transition><property name="a_track">0</property><property name="b_track">1</property>
  <property name="start">-1</property><property name="always_active">1</property>
  <property name="sum">1</property><property name="mlt_service">mix</property></transition>
 <filter in="12" out="87"><property name="mlt_service">avfilter.drawtext</property>
  <property name="av.text">Summer 2026</property><property name="av.font">DejaVu Sans</property>
  <property name="av.fontsize">60</property><property name="av.fontcolor">white</property>
  <property name="av.x">(w-text_w)/2</property><property name="av.y">h-text_h-36</property>
 </filter>
</tractor>
</mlt>
)";
        return xml;
    }

    static std::string filterGraph() {
        std::string graph;
        for (const char* clip : {"0", "1", "2"})
            graph += std::string("[") + clip + ":v]scale=1280:720,setsar=1,format=yuv420p[v" + clip
                     + "];";
        return graph
               + "[v0][v1]xfade=transition=fade:duration=1:offset=7[x1];"
                 "[x1][v2]xfade=transition=fade:duration=1:offset=14[x2];"
                 "[x2]drawtext=font=DejaVu Sans:text=Summer 2026:fontsize=60:fontcolor=white:"
                 "x=(w-text_w)/2:y=h-text_h-36:enable='between(t,0.5,3.5)'[v];"
                 "[0:a][1:a]acrossfade=d=1:c1=qsin:c2=qsin[a1];"
                 "[a1][2:a]acrossfade=d=1:c1=qsin:c2=qsin[a2];"
                 "[3:a]atrim=0:22,volume=-6dB,afade=t=in:d=1,afade=t=out:st=20:d=2[m];"
                 "[a2][m]amix=inputs=2:duration=first:normalize=0[a]";
    }

    QTemporaryDir directory;
};

const Edit& edit() {
    static const Edit made;
    return made;
}

// The edit rendered by us, melt (when installed), ffmpeg's filter graph and our export of a
// plain 22 s clip, one after the other: the time each takes, and the processor time it spends
// (which a machine shared with other work disturbs less).
void ProjectAgainstRivals(benchmark::State& state) {
    const bool melt = Bench::isInstalled("melt");
    const auto measure = [&state](const std::string& name, const Program& program) {
        const Bench::Measured run = measureRun(program);
        state.counters[name + "_seconds"] = run.time.count();
        state.counters[name + "_cpu_seconds"] = run.cpu.count();
    };
    for (auto _ : state) {
        try {
            measure("host", edit().ours());
            if (melt)
                measure("melt", edit().melt());
            measure("ffmpeg", edit().ffmpegGraph());
            measure("plain", edit().plain());
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
    }
}
BENCHMARK(ProjectAgainstRivals)->Iterations(1)->Unit(benchmark::kMillisecond);

// A project of `clips` loops of one 13 s 320x180 clip, each crossing into the next in 1 s, a
// title over each, and a looped tone as music ducked under them; rendered to 160x90.
std::string longProject(const std::string& clip, const std::string& music, int clips) {
    std::string video, titles;
    for (int i = 0; i < clips; ++i) {
        video += std::string(i ? ",\n" : "") + "{\"source\": \"" + clip + "\""
                 + (i ? ", \"transition\": {\"type\": \"fade\", \"duration_ms\": 1000}" : "") + "}";
        titles += std::string(i ? ",\n" : "") + "{\"text\": \"Part " + text(i)
                  + "\", \"start_ms\": " + text(i * 12000 + 1000) + ", \"duration_ms\": 3000}";
    }
    return R"({"reelsmith_project": 1,
 "output": {"width": 160, "height": 90, "frame_rate": "25/1"},
 "tracks": [{"type": "video", "clips": [)"
           + video + R"(]},
  {"type": "overlay", "clips": [)"
           + titles + R"(]},
  {"type": "audio", "clips": [{"source": ")"
           + music + R"(", "volume_db": -6, "loop": true}],
   "duck": {"amount_db": -12}}]})";
}

class LongProjects {
public:
    LongProjects() {
        makeClip(file("loop.mp4"), "320x180", 13, 0, 440);
        ffmpeg({"-f", "lavfi", "-i", "sine=frequency=220:sample_rate=48000:duration=7", "-ac", "2",
                file("music.wav")});
        // 5 and 50 clips: 61 s and 601 s.
        writeText(file("minute.json"), longProject("loop.mp4", "music.wav", 5));
        writeText(file("ten.json"), longProject("loop.mp4", "music.wav", 50));
    }

    std::string file(const std::string& name) const {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }

    Program export_(const std::string& project) const {
        return {{REELSMITH_HOST, "export", file(project), "--output=" + file(project + ".mp4"),
                 "--overwrite"}};
    }

    QTemporaryDir directory;
};

// Peak memory of a 1-minute and a 10-minute project, one after the other.
void ProjectMemoryInLength(benchmark::State& state) {
    static const LongProjects projects;
    for (auto _ : state) {
        try {
            state.counters["minute_peak_kib"] =
                double(measureRun(projects.export_("minute.json")).peakKib);
            state.counters["ten_minutes_peak_kib"] =
                double(measureRun(projects.export_("ten.json")).peakKib);
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
    }
}
BENCHMARK(ProjectMemoryInLength)->Iterations(1)->Unit(benchmark::kMillisecond);

// A slow Ken Burns move over a still (a soft bright spot on a dark ground), 100 frames, by our
// pan_zoom and by ffmpeg's zoompan given the same eased rectangles, both encoded at a high
// rate: how far the spot's tracked centre strays from the eased path, in pixels (RMS).
class PanAndZoom {
public:
    static constexpr int stillWidth = 640;
    static constexpr int stillHeight = 360;
    static constexpr int width = 320;
    static constexpr int height = 180;
    static constexpr int frames = 100;
    const ShownRect from{0.3, 0.3, 0.5, 0.5};
    const ShownRect to{0.33, 0.31, 0.47, 0.47};

    PanAndZoom() {
        ffmpeg({"-f", "lavfi", "-i",
                "color=black:size=" + text(stillWidth) + "x" + text(stillHeight)
                    + ",format=gray,geq=lum='16+219*exp(-((X-300.3)^2+(Y-170.6)^2)/18)'",
                "-frames:v", "1", file("still.png")});
        writeText(file("pan.json"), R"({"reelsmith_project": 1,
 "output": {"width": 320, "height": 180, "frame_rate": "25/1"},
 "tracks": [{"type": "video", "clips": [{"source": "still.png", "duration_ms": 4000,
  "pan_zoom": {"from": [0.3, 0.3, 0.5, 0.5], "to": [0.33, 0.31, 0.47, 0.47],
               "easing": "ease-in-out"}}]}]})");
        spot = spotCentres(greyFrames("still.png"), stillWidth, stillHeight).at(0);
    }

    std::string file(const std::string& name) const {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }

    double ours() const {
        timeRun({{REELSMITH_HOST, "export", file("pan.json"), "--output=" + file("ours.mp4"),
                  "--preset-video-bitrate=8000000", "--overwrite"}});
        return jitter("ours.mp4");
    }

    double zoompan() const {
        const std::string eased = "if(lt(on/100,0.5),4*pow(on/100,3),1-4*pow(1-on/100,3))";
        ffmpeg({"-i", file("still.png"), "-vf",
                "zoompan=z='1/(0.5-0.03*" + eased + ")':x='iw*(0.3+0.03*" + eased
                    + ")':y='ih*(0.3+0.01*" + eased + ")':d=100:s=320x180:fps=25,format=yuv420p",
                "-c:v", "libx264", "-b:v", "8000000", file("zoompan.mp4")});
        return jitter("zoompan.mp4");
    }

private:
    QByteArray greyFrames(const std::string& name) const {
        const std::string raw = file(name + ".grey");
        ffmpeg({"-i", file(name), "-f", "rawvideo", "-pix_fmt", "gray", raw});
        QFile read(QString::fromStdString(raw));
        if (!read.open(QIODevice::ReadOnly))
            throw std::runtime_error("cannot read " + raw);
        return read.readAll();
    }

    double jitter(const std::string& video) const {
        const std::vector<SpotPoint> tracked = spotCentres(greyFrames(video), width, height);
        if (tracked.size() != std::size_t(frames))
            throw std::runtime_error(video + ": " + text(int(tracked.size())) + " frames");
        std::vector<SpotPoint> path;
        for (int frame = 0; frame < frames; ++frame)
            path.push_back(placedAt(spot, stillWidth, stillHeight,
                                    shownAt(from, to, easeInOut(double(frame) / frames)), width,
                                    height));
        return rmsDistance(tracked, path);
    }

    QTemporaryDir directory;
    SpotPoint spot;
};

void PanZoomJitter(benchmark::State& state) {
    static const PanAndZoom move;
    for (auto _ : state) {
        try {
            state.counters["host_rms_px"] = move.ours();
            state.counters["zoompan_rms_px"] = move.zoompan();
        } catch (const std::exception& error) {
            state.SkipWithError(error.what());
            return;
        }
    }
}
BENCHMARK(PanZoomJitter)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
