#include "platform/export/Exporter.h"

#include "platform/av/OutputFormats.h"
#include "platform/av/Picture.h"
#include "platform/engine/CoreManager.h"
#include "platform/export/EncoderLimits.h"
#include "platform/foundation/OutputFile.h"
#include "platform/project/EditReader.h"
#include "platform/projectrender/ProjectLoader.h"
#include "platform/projectrender/ProjectSource.h"
#include "platform/render/ClipSource.h"
#include "platform/render/ProgressMeter.h"
#include "platform/render/ResizedVideo.h"
#include "platform/render/Runner.h"
#include "platform/render/UprightVideo.h"
#include "platform/render/Writer.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <optional>

namespace Export {

using namespace Velmor;

namespace {

// The pictures between two stages: enough to let each run while its neighbour takes a slow
// frame, few enough to keep memory flat.
constexpr std::size_t pictureCapacity = 4;

struct EncoderNames {
    std::string video;
    std::string audio;
};

AV::RateControl rateControl(BitrateMode mode) {
    switch (mode) {
    case BitrateMode::Quality:
        return AV::RateControl::Quality;
    case BitrateMode::Bps:
        return AV::RateControl::Bitrate;
    case BitrateMode::Auto:
        break;
    }
    return AV::RateControl::Auto;
}

std::optional<Render::ClipSettings::Range> microseconds(const Types::Range& range) {
    if (!range.isValid())
        return std::nullopt;
    return Render::ClipSettings::Range{std::min(range.start(), range.end()) * 1000,
                                       std::max(range.start(), range.end()) * 1000};
}

// What of the input the export renders: a part's exact span, else the range.
std::optional<Render::ClipSettings::Range> span(const ExportSettings& settings) {
    if (settings.part && settings.part->toUs > settings.part->fromUs)
        return Render::ClipSettings::Range{settings.part->fromUs, settings.part->toUs};
    return microseconds(settings.range);
}

bool wantsVideo(const ExportSettings& settings) {
    return !settings.part || settings.part->video;
}

bool wantsAudio(const ExportSettings& settings) {
    return !settings.part || settings.part->audio;
}

Render::ClipSettings clipSettings(const ExportSettings& settings) {
    Render::ClipSettings clip;
    clip.path = settings.input;
    // Sound alone is exported as sound alone.
    clip.requireVideo = false;
    clip.range = span(settings);
    // Sound nobody reads would hold up the pictures in the shared demuxer.
    clip.audio = wantsAudio(settings);
    return clip;
}

int shownWidth(const Preset& preset, const Render::VideoFormat& input) {
    return preset.width() > 0 ? preset.width() : input.width;
}

int shownHeight(const Preset& preset, const Render::VideoFormat& input) {
    return preset.height() > 0 ? preset.height() : input.height;
}

// The preset's size, the input's as shown where it has none, even for the encoder's chroma.
Proc::SettingsResizer resizing(const Preset& preset, const Render::VideoFormat& input) {
    Proc::SettingsResizer resize;
    resize.width = shownWidth(preset, input) & ~1;
    resize.height = shownHeight(preset, input) & ~1;
    resize.mode = preset.resizeFillMode();
    resize.pixelFormat = AV::pixelFormat("yuv420p");
    return resize;
}

// The written streams in the file's order: the video first, when there is one.
ExportResult exportResult(const Render::WriterResult& written, bool hasVideo) {
    ExportResult result;
    result.durationMs = written.durationMs;
    result.bytes = written.bytes;
    std::size_t next = 0;
    if (hasVideo) {
        const Render::WrittenStream& video = written.streams.at(next++);
        result.frames = video.packets;
        result.video = ExportResult::Video{video.codec, video.width, video.height, video.bitRate};
    }
    if (written.streams.size() > next) {
        const Render::WrittenStream& audio = written.streams[next];
        result.audio =
            ExportResult::Audio{audio.codec, audio.sampleRate, audio.channels, audio.bitRate};
    }
    return result;
}

} // namespace

ExportCancelled::ExportCancelled(const std::string& output)
    : std::runtime_error("Export cancelled: " + output) {}

class Exporter::Private {
public:
    ExportSettings settings;
    std::atomic<bool> cancelled{false};
    // A project input, read and validated before anything is written; none for a media file.
    std::optional<Project::Edit> project;
    // The muxer's name, told by the output's name before anything is read.
    std::string container;

    // The runner of the export under way, for cancel().
    std::mutex runnerMutex;
    Render::Runner* runner = nullptr;

    // run() is under way; the destructor waits for it.
    std::mutex runMutex;
    std::condition_variable runEnded;
    bool running = false;

    ExportCancelled cancelledFailure() const { return ExportCancelled(settings.output); }

    ExportResult render(const Progress& progress, const EncoderNames& encoders, OutputFile& file);
    ExportResult wire(Render::Runner& runner, const Progress& progress,
                      const EncoderNames& encoders, OutputFile& file);
    template <typename Input>
    ExportResult wireInput(Render::Runner& runner, Input& input, const Progress& progress,
                           const EncoderNames& encoders, OutputFile& file);
};

ExportResult Exporter::Private::render(const Progress& progress, const EncoderNames& encoders,
                                       OutputFile& file) {
    Render::Runner renderRunner;
    {
        std::lock_guard<std::mutex> lock(runnerMutex);
        runner = &renderRunner;
        if (cancelled)
            renderRunner.cancel();
    }
    struct Forget {
        Private& d;
        ~Forget() {
            std::lock_guard<std::mutex> lock(d.runnerMutex);
            d.runner = nullptr;
        }
    } forget{*this};
    return wire(renderRunner, progress, encoders, file);
}

ExportResult Exporter::Private::wire(Render::Runner& runner, const Progress& progress,
                                     const EncoderNames& encoders, OutputFile& file) {
    if (project) {
        Render::ProjectSource composed(*project, span(settings), runner.stop());
        return wireInput(runner, composed, progress, encoders, file);
    }
    Render::ClipSource clip(clipSettings(settings), runner.stop());
    return wireInput(runner, clip, progress, encoders, file);
}

// Making (decoding or composing), standing upright, resizing and encoding the pictures each on a
// thread of its own, the sound on one more; a media file's demuxer read by whichever of them
// needs a packet.
template <typename Input>
ExportResult Exporter::Private::wireInput(Render::Runner& runner, Input& input,
                                          const Progress& progress, const EncoderNames& encoders,
                                          OutputFile& file) {
    const Preset& preset = settings.preset;
    Render::Writer writer(file.descriptor(), settings.output, container);
    // The stages of the pictures, from the made to the encoded; none without video.
    std::optional<Render::UprightVideo> upright;
    std::optional<Render::ResizedVideo> resized;
    Render::VideoSource* video = input.video();
    // Pictures nobody encodes are let go, so that the demuxer they share does not wait for them.
    if (video && !wantsVideo(settings)) {
        video->finish();
        video = nullptr;
    }
    if (video) {
        Render::VideoSource& made = runner.boundary(*video, pictureCapacity);
        upright.emplace(made);
        const Render::VideoFormat shown = upright->format();
        requireFrameSize(shownWidth(preset, shown), shownHeight(preset, shown), encoders.video,
                         preset.width() > 0, settings.input);
        resized.emplace(*upright, resizing(preset, shown));
        Render::VideoSource& pictures = runner.boundary(*resized, pictureCapacity);
        const Render::VideoEncoding encoding{encoders.video, rateControl(preset.videoBitrateMode()),
                                             preset.videoBitrateBps(), settings.part.has_value()};
        runner.connect(pictures, writer.addVideo(pictures.format(), encoding));
    }
    const std::optional<Render::AudioFormat> offered =
        wantsAudio(settings) ? input.inputAudio() : std::nullopt;
    if (offered) {
        const Render::AudioEncoding audio{encoders.audio, preset.audioBitrateBps()};
        Render::AudioSource& sound = *input.audio(Render::Writer::audioFormat(audio, *offered));
        runner.connect(sound, writer.addAudio(sound.format(), audio));
    }

    std::optional<Render::ProgressMeter> meter;
    if (progress) {
        meter.emplace(input.durationMs(), [&progress](const Render::Progress& value) {
            progress(ExportProgress{value.progress, value.frames, value.fps});
        });
        writer.onEncoded(
            [&meter](std::int64_t frames, std::int64_t endMs) { meter->update(frames, endMs); });
    }
    runner.run();
    return exportResult(writer.finish(), upright.has_value());
}

Exporter::Exporter(ExportSettings settings)
    : d(std::make_unique<Private>()) {
    d->settings = std::move(settings);
}

Exporter::~Exporter() {
    cancel();
    std::unique_lock<std::mutex> lock(d->runMutex);
    d->runEnded.wait(lock, [this] { return !d->running; });
}

ExportResult Exporter::run(const Progress& progress) {
    {
        std::lock_guard<std::mutex> lock(d->runMutex);
        if (d->running)
            throw std::logic_error("Export " + d->settings.output + " is running already");
        d->running = true;
    }
    struct Ended {
        Private& d;
        ~Ended() {
            std::lock_guard<std::mutex> lock(d.runMutex);
            d.running = false;
            d.runEnded.notify_all();
        }
    } ended{*d};

    // Before anything is written: a disabled plug-in fails with the engine's words.
    const Preset& preset = d->settings.preset;
    auto& core = Core::CoreManager::Instance();
    const EncoderNames encoders{core.EncoderFor(preset.videoCodec()),
                                core.EncoderFor(preset.audioCodec())};
    requireBitrates(preset, encoders.video, encoders.audio);
    // An output its name says it is not fails before anything is read.
    d->container = AV::containerFor(d->settings.output, preset.container());
    if (d->cancelled)
        throw d->cancelledFailure();
    // A bad project fails before anything is written, with the project's words.
    const QString input = QString::fromStdString(d->settings.input);
    if (d->settings.project)
        d->project = *d->settings.project;
    else if (Project::looksLikeProject(input))
        d->project = Render::loadProject(input);
    if (d->project)
        Render::requireRenderPlugins(*d->project);
    // Made before anything is decoded: a folder that is missing or can not be written fails here.
    const auto existing =
        d->settings.overwrite ? OutputFile::Existing::Replace : OutputFile::Existing::Keep;
    OutputFile file(d->settings.output, existing);
    try {
        ExportResult result = d->render(progress, encoders, file);
        file.commit();
        return result;
    } catch (...) {
        // Whatever a cancelled export failed with on its way out (an interrupted read), it was
        // cancelled.
        if (d->cancelled)
            throw d->cancelledFailure();
        throw;
    }
}

void Exporter::cancel() {
    d->cancelled = true;
    std::lock_guard<std::mutex> lock(d->runnerMutex);
    if (d->runner)
        d->runner->cancel();
}

} // namespace Export
