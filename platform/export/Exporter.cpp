#include "platform/export/Exporter.h"

#include "platform/av/AudioFifo.h"
#include "platform/av/BoundedQueue.h"
#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Encoder.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Muxer.h"
#include "platform/av/Packet.h"
#include "platform/av/Picture.h"
#include "platform/av/Rational.h"
#include "platform/av/Resampler.h"
#include "platform/engine/CoreManager.h"
#include "platform/foundation/OutputFile.h"
#include "platform/proc/Resizer.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <limits>
#include <mutex>
#include <thread>

namespace Export {

using namespace Velmor;

namespace {

constexpr AV::Rational microseconds{1, 1000000};
constexpr std::int64_t unknown = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();

// How much each queue holds: packets are small, pictures are not. Enough to let each stage run
// while its neighbour takes a slow frame, little enough to keep memory flat.
constexpr std::size_t packetCapacity = 64;
constexpr std::size_t pictureCapacity = 4;

std::int64_t bitRate(std::int64_t bytes, std::int64_t durationMs) {
    return durationMs > 0 ? bytes * 8 * 1000 / durationMs : 0;
}

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

} // namespace

class Exporter::Private {
public:
    ExportSettings settings;

    // Set by cancel(): the export ends with ExportCancelled.
    std::atomic<bool> cancelled{false};
    // Set by the first failure of any stage: the others stop, and run() throws it.
    std::atomic<bool> aborted{false};
    std::mutex errorMutex;
    std::exception_ptr error;

    AV::BoundedQueue<AV::Packet> videoPackets{packetCapacity};
    AV::BoundedQueue<AV::Frame> decodedPictures{pictureCapacity};
    AV::BoundedQueue<AV::Frame> resizedPictures{pictureCapacity};

    // The time of the first video frame exported, in microseconds of the input: where audio
    // begins too, so that both start at 0 together.
    std::mutex firstMutex;
    std::condition_variable firstKnown;
    std::int64_t firstVideo = unknown;
    bool firstDecided = false;

    // run() is under way; the destructor waits for it.
    std::mutex runMutex;
    std::condition_variable runEnded;
    bool running = false;

    bool stopping() const { return cancelled || aborted; }

    void stopAll() {
        videoPackets.cancel();
        decodedPictures.cancel();
        resizedPictures.cancel();
        std::lock_guard<std::mutex> lock(firstMutex);
        firstKnown.notify_all();
    }

    void fail(std::exception_ptr failure) {
        {
            std::lock_guard<std::mutex> lock(errorMutex);
            if (!error)
                error = failure;
        }
        aborted = true;
        stopAll();
    }

    // Runs a stage's body, turning its failure into everybody's.
    template <typename Body> void guarded(Body body) {
        try {
            body();
        } catch (...) {
            fail(std::current_exception());
        }
    }

    void decideFirstVideo(std::int64_t time) {
        std::lock_guard<std::mutex> lock(firstMutex);
        if (firstDecided)
            return;
        firstVideo = time;
        firstDecided = true;
        firstKnown.notify_all();
    }

    bool firstVideoDecided() {
        std::lock_guard<std::mutex> lock(firstMutex);
        return firstDecided;
    }

    // The first video time once known; `wait` blocks until it is (or the export stops).
    std::int64_t firstVideoTime(bool wait) {
        std::unique_lock<std::mutex> lock(firstMutex);
        if (wait)
            firstKnown.wait(lock, [this] { return firstDecided || stopping(); });
        return firstDecided ? firstVideo : unknown;
    }

    ExportResult export_(const Progress& progress, const std::string& videoEncoderName,
                         const std::string& audioEncoderName, OutputFile& file);
};

ExportResult Exporter::Private::export_(const Progress& progress,
                                        const std::string& videoEncoderName,
                                        const std::string& audioEncoderName, OutputFile& file) {
    AV::Demuxer demuxer(settings.input, [this] { return stopping(); });
    const int videoStream = demuxer.bestStream("video");
    if (videoStream < 0)
        throw AV::MediaError("Can not export " + settings.input + ": it has no video");
    const int audioStream = demuxer.bestStream("audio");
    const AV::StreamInfo& videoInfo = demuxer.info().streams.at(videoStream);
    const AV::Rational videoBase = demuxer.timeBase(videoStream);

    // The span to export, in microseconds of the input's timestamps.
    const std::int64_t inputMs = demuxer.info().durationMs;
    std::int64_t begin = demuxer.startTime();
    std::int64_t end = endless;
    std::int64_t expectedMs = inputMs;
    const Types::Range& range = settings.range;
    if (range.isValid()) {
        const MTime from = std::min(range.start(), range.end());
        const MTime to = std::max(range.start(), range.end());
        if (from < 0 || from >= to || to > inputMs)
            throw AV::MediaError("Range " + std::to_string(from) + ":" + std::to_string(to)
                                 + " ms is outside " + settings.input + " ("
                                 + std::to_string(inputMs) + " ms)");
        begin += from * 1000;
        end = begin + (to - from) * 1000;
        expectedMs = to - from;
    }
    const std::int64_t videoBegin = AV::rescale(begin, microseconds, videoBase);
    const std::int64_t videoEnd =
        end == endless ? endless : AV::rescale(end, microseconds, videoBase);

    // The size 0 of a free resolution is the input's, even for the encoder's chroma.
    const Preset& preset = settings.preset;
    const int width = (preset.width() > 0 ? preset.width() : videoInfo.width) & ~1;
    const int height = (preset.height() > 0 ? preset.height() : videoInfo.height) & ~1;
    const int pixelFormat = AV::pixelFormat("yuv420p");

    // The muxer first: the encoders ask it whether it wants their headers out of band.
    AV::Muxer muxer(file.descriptor(), settings.output, preset.container());
    AV::VideoEncoderSettings videoSettings;
    videoSettings.encoder = videoEncoderName;
    videoSettings.width = width;
    videoSettings.height = height;
    videoSettings.pixelFormat = pixelFormat;
    videoSettings.timeBase = videoBase;
    videoSettings.frameRate = demuxer.frameRate(videoStream);
    videoSettings.rateControl = rateControl(preset.videoBitrateMode());
    videoSettings.bitRate = preset.videoBitrateBps();
    videoSettings.globalHeader = muxer.wantsGlobalHeader();
    auto videoEncoder = AV::Encoder::video(videoSettings);

    std::unique_ptr<AV::Decoder> audioDecoder;
    std::unique_ptr<AV::Encoder> audioEncoder;
    if (audioStream >= 0) {
        const AV::StreamInfo& audioInfo = demuxer.info().streams.at(audioStream);
        audioDecoder = std::make_unique<AV::Decoder>(demuxer, audioStream);
        AV::AudioEncoderSettings audioSettings;
        audioSettings.encoder = audioEncoderName;
        audioSettings.sampleRate = audioInfo.sampleRate;
        audioSettings.channels = audioInfo.channels;
        audioSettings.bitRate = preset.audioBitrateBps();
        audioSettings.globalHeader = muxer.wantsGlobalHeader();
        audioEncoder = AV::Encoder::audio(audioSettings);
    }
    const int videoOut = muxer.addStream(*videoEncoder);
    const int audioOut = audioEncoder ? muxer.addStream(*audioEncoder) : -1;
    muxer.writeHeader();
    std::mutex muxMutex;

    if (range.isValid() && begin > demuxer.startTime())
        demuxer.seek(videoStream, videoBegin);

    AV::Decoder videoDecoder(demuxer, videoStream);
    Proc::SettingsResizer resize;
    resize.width = width;
    resize.height = height;
    resize.mode = preset.resizeFillMode();
    resize.pixelFormat = pixelFormat;
    Proc::Resizer resizer(resize);

    // Demuxing on a thread of its own; audio is light, so it is decoded, resampled, cut,
    // re-chunked, encoded and muxed on the same thread.
    std::thread demuxing([&] {
        guarded([&] {
            std::optional<AV::Resampler> resampler;
            std::optional<AV::AudioFifo> fifo;
            std::int64_t audioBegin = 0;
            std::int64_t audioEnd = endless;
            std::int64_t audioOffset = unknown;
            bool audioStarted = false;
            bool audioDone = !audioEncoder;
            bool videoDone = false;
            std::deque<AV::Frame> waiting;
            const AV::Rational audioBase =
                audioEncoder ? AV::Rational{1, audioEncoder->sampleRate()} : AV::Rational{};
            if (audioEncoder) {
                resampler.emplace(audioEncoder->sampleFormat(), audioEncoder->sampleRate(),
                                  audioEncoder->channels());
                fifo.emplace(audioEncoder->sampleFormat(), audioEncoder->sampleRate(),
                             audioEncoder->channels(), audioEncoder->frameSize());
            }
            AV::Packet out;
            auto mux = [&](int stream, AV::Packet& packet) {
                std::lock_guard<std::mutex> lock(muxMutex);
                muxer.write(stream, packet);
            };
            auto encodeAudio = [&](AV::Frame* frame) {
                if (frame)
                    frame->setTimestamp(frame->timestamp() + audioOffset);
                while (!audioEncoder->send(frame)) {
                    while (audioEncoder->receive(out))
                        mux(audioOut, out);
                }
                while (audioEncoder->receive(out))
                    mux(audioOut, out);
            };
            auto pullFifo = [&](bool flush) {
                AV::Frame chunk;
                while (fifo->read(chunk, flush))
                    encodeAudio(&chunk);
            };
            // Cuts a block of resampled samples to the exported span, to the sample.
            auto cut = [&](const AV::Frame& block) {
                const std::int64_t start = block.timestamp();
                const std::int64_t samples = block.samples();
                if (audioDone || samples == 0)
                    return;
                if (start >= audioEnd) {
                    audioDone = true;
                    return;
                }
                const std::int64_t skip = std::clamp<std::int64_t>(audioBegin - start, 0, samples);
                const std::int64_t keep = std::min(samples, audioEnd - start) - skip;
                if (keep <= 0)
                    return;
                if (audioOffset == unknown)
                    audioOffset = start + skip - audioBegin;
                fifo->write(block, static_cast<int>(skip), static_cast<int>(keep));
                pullFifo(false);
            };
            auto startAudio = [&](bool wait) {
                if (audioStarted)
                    return true;
                const std::int64_t first = firstVideoTime(wait);
                if (first == unknown)
                    return false;
                audioStarted = true;
                audioBegin = AV::rescale(first, microseconds, audioBase);
                if (end != endless)
                    audioEnd = AV::rescale(end, microseconds, audioBase);
                for (const AV::Frame& block : waiting)
                    cut(block);
                waiting.clear();
                return true;
            };
            auto takeAudio = [&](AV::Frame& decoded) {
                AV::Frame block = resampler->convert(decoded, demuxer.timeBase(audioStream));
                if (startAudio(false))
                    cut(block);
                else
                    waiting.push_back(std::move(block));
            };
            auto decodeAudio = [&](const AV::Packet* packet) {
                AV::Frame decoded;
                while (!audioDecoder->send(packet)) {
                    while (audioDecoder->receive(decoded))
                        takeAudio(decoded);
                }
                while (audioDecoder->receive(decoded))
                    takeAudio(decoded);
            };

            AV::Packet packet;
            while (!stopping() && !(videoDone && audioDone) && demuxer.read(packet)) {
                if (packet.streamIndex() == videoStream && !videoDone) {
                    // Refused once the video has reached the end of the span.
                    videoDone = !videoPackets.push(std::move(packet));
                    packet = AV::Packet();
                } else if (packet.streamIndex() == audioStream && !audioDone) {
                    decodeAudio(&packet);
                }
            }
            videoPackets.close();
            if (stopping() || !audioEncoder)
                return;
            if (!audioDone) {
                decodeAudio(nullptr);
                AV::Frame rest = resampler->drain();
                if (startAudio(false))
                    cut(rest);
                else
                    waiting.push_back(std::move(rest));
            }
            if (!startAudio(true))
                return; // stopped, or no video at all: that failure is the video's to tell
            pullFifo(true);
            encodeAudio(nullptr);
        });
    });

    std::thread decoding([&] {
        guarded([&] {
            AV::Frame frame;
            std::int64_t last = unknown;
            const AV::Rational rate = demuxer.frameRate(videoStream);
            const std::int64_t step =
                rate.num > 0 ? AV::rescale(1, {rate.den, rate.num}, videoBase) : 1;
            bool done = false;
            auto take = [&]() {
                while (!done && videoDecoder.receive(frame)) {
                    std::int64_t time = frame.timestamp();
                    if (time == AV::noTimestamp)
                        time = last == unknown ? videoBegin : last + step;
                    last = time;
                    if (time < videoBegin)
                        continue;
                    if (time >= videoEnd) {
                        done = true;
                        // Tells the demuxer to send no more video.
                        videoPackets.cancel();
                        return;
                    }
                    frame.setTimestamp(time);
                    decideFirstVideo(AV::rescale(time, videoBase, microseconds));
                    if (!decodedPictures.push(std::move(frame)))
                        return;
                    frame = AV::Frame();
                }
            };
            while (!done && !stopping()) {
                std::optional<AV::Packet> packet = videoPackets.pop();
                if (!packet)
                    break;
                while (!videoDecoder.send(&*packet))
                    take();
                take();
            }
            if (!done && !stopping()) {
                videoDecoder.send(nullptr);
                take();
            }
            if (!stopping() && !firstVideoDecided())
                throw AV::MediaError("Can not export " + settings.input
                                     + ": no video frame in the range");
            decodedPictures.close();
        });
    });

    std::thread resizing([&] {
        guarded([&] {
            std::int64_t first = unknown;
            while (!stopping()) {
                std::optional<AV::Frame> frame = decodedPictures.pop();
                if (!frame)
                    break;
                AV::Frame resized = resizer.Resize(*frame);
                if (first == unknown)
                    first = frame->timestamp();
                // The first exported frame at 0.
                resized.setTimestamp(frame->timestamp() - first);
                if (!resizedPictures.push(std::move(resized)))
                    break;
            }
            resizedPictures.close();
        });
    });

    // Encoding and muxing the video on the calling thread.
    const auto started = std::chrono::steady_clock::now();
    std::int64_t encoded = 0;
    std::int64_t encodedMs = 0;
    guarded([&] {
        AV::Packet packet;
        const AV::Rational encoderBase = videoEncoder->timeBase();
        auto drain = [&] {
            while (videoEncoder->receive(packet)) {
                // Packets come in decoding order: the furthest end so far is what is done.
                encodedMs = std::max(encodedMs, AV::rescale(packet.timestamp() + packet.duration(),
                                                            encoderBase, AV::Rational{1, 1000}));
                {
                    std::lock_guard<std::mutex> lock(muxMutex);
                    muxer.write(videoOut, packet);
                }
                ++encoded;
                if (progress) {
                    const double seconds =
                        std::chrono::duration<double>(std::chrono::steady_clock::now() - started)
                            .count();
                    ExportProgress value;
                    value.frames = encoded;
                    value.progress =
                        expectedMs > 0
                            ? std::clamp(static_cast<double>(encodedMs) / expectedMs, 0.0, 1.0)
                            : 0.0;
                    value.fps = seconds > 0 ? encoded / seconds : 0;
                    progress(value);
                }
            }
        };
        while (!stopping()) {
            std::optional<AV::Frame> frame = resizedPictures.pop();
            if (!frame)
                break;
            while (!videoEncoder->send(&*frame))
                drain();
            drain();
        }
        if (!stopping()) {
            videoEncoder->send(nullptr);
            drain();
        }
    });

    demuxing.join();
    decoding.join();
    resizing.join();
    if (cancelled)
        throw ExportCancelled("Export cancelled: " + settings.output);
    if (error)
        std::rethrow_exception(error);

    muxer.finish();

    ExportResult result;
    const AV::Muxer::Written video = muxer.written(videoOut);
    result.frames = video.packets;
    result.durationMs = video.durationMs;
    result.video.codec = videoEncoder->codecName();
    result.video.width = width;
    result.video.height = height;
    result.video.bitRate = bitRate(video.bytes, video.durationMs);
    if (audioEncoder) {
        const AV::Muxer::Written audio = muxer.written(audioOut);
        result.durationMs = std::max(result.durationMs, audio.durationMs);
        result.audio =
            ExportResult::Audio{audioEncoder->codecName(), audioEncoder->sampleRate(),
                                audioEncoder->channels(), bitRate(audio.bytes, audio.durationMs)};
    }
    result.bytes = file.size();
    return result;
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
    const std::string videoEncoder = core.EncoderFor(preset.videoCodec());
    const std::string audioEncoder = core.EncoderFor(preset.audioCodec());
    if (d->cancelled)
        throw ExportCancelled("Export cancelled: " + d->settings.output);

    // Made before anything is decoded: a folder that is missing or can not be written fails here.
    const auto existing =
        d->settings.overwrite ? OutputFile::Existing::Replace : OutputFile::Existing::Keep;
    OutputFile file(d->settings.output, existing);
    try {
        ExportResult result = d->export_(progress, videoEncoder, audioEncoder, file);
        file.commit();
        return result;
    } catch (...) {
        // Whatever a cancelled export failed with on its way out (an interrupted read), it was
        // cancelled.
        if (d->cancelled)
            throw ExportCancelled("Export cancelled: " + d->settings.output);
        throw;
    }
}

void Exporter::cancel() {
    d->cancelled = true;
    d->stopAll();
}

} // namespace Export
