#include "platform/render/ClipSource.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/render/Cancelled.h"
#include "platform/render/ClipAudio.h"
#include "platform/render/ClipVideo.h"
#include "platform/render/SharedDemuxer.h"
#include "platform/render/Stop.h"

#include <limits>

namespace Velmor::Render {
namespace {

constexpr AV::Rational microseconds{1, 1000000};
constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t second = 1000000;
// The packets that wait for a stream's consumer: enough for the file's interleaving, little
// enough to keep memory flat.
constexpr std::size_t packetCapacity = 64;

} // namespace

class ClipSource::Private {
public:
    ClipSettings settings;
    const Stop& stop;
    std::unique_ptr<AV::Demuxer> demuxer;
    std::unique_ptr<SharedDemuxer> packets;
    int videoStream = -1;
    int audioStream = -1;
    // The span, in microseconds of the file's timestamps.
    std::int64_t begin = 0;
    std::int64_t end = endless;
    std::int64_t durationMs = 0;
    std::unique_ptr<ClipVideo> video;
    std::unique_ptr<AV::Decoder> audioDecoder;
    std::unique_ptr<ClipAudio> audio;

    Private(const ClipSettings& settings, const Stop& stop)
        : settings(settings)
        , stop(stop) {}

    void chooseStreams() {
        videoStream = demuxer->bestStream("video");
        if (videoStream < 0 && settings.requireVideo)
            throw AV::MediaError("Can not export " + settings.path + ": it has no video");
        if (settings.audio)
            audioStream = demuxer->bestStream("audio");
    }

    void chooseSpan() {
        const std::int64_t inputMs = demuxer->info().durationMs;
        begin = demuxer->origin();
        durationMs = inputMs;
        if (!settings.range)
            return;
        const ClipSettings::Range& range = *settings.range;
        range.requireWithin(settings.path, inputMs);
        begin += range.from;
        end = begin + (range.to - range.from);
        durationMs = (range.to - range.from) / 1000;
    }

    // A seek lands on a key frame at or before the time as far as the container knows; MPEG-TS
    // and MPEG-PS know only timestamps, and may land past the key frame that the range's first
    // picture needs. So the first picture after the seek is decoded, and the seek steps back a
    // second, two, four..., until that picture is at or before the range's start, or the seek
    // went a second before the file's first timestamp, earlier than any packet.
    void seek() {
        if (!settings.range || begin <= demuxer->startTime())
            return;
        const int stream = videoStream >= 0 ? videoStream : audioStream;
        const std::int64_t head = demuxer->startTime() - second;
        std::int64_t point = begin;
        demuxer->seek(stream, inStream(point, stream));
        for (std::int64_t back = second; videoStream >= 0 && point >= head && !reachesBegin();
             back *= 2) {
            point = begin - back;
            demuxer->seek(stream, inStream(point, stream));
        }
        // Again, for the packets the check read.
        if (videoStream >= 0)
            demuxer->seek(stream, inStream(point, stream));
    }

    // Whether the first picture decoded from here shows at or before the range's start.
    bool reachesBegin() {
        AV::Decoder decoder(*demuxer, videoStream, 1);
        AV::Frame picture;
        if (!decoder.decodeNext(*demuxer, picture) || picture.timestamp() == AV::noTimestamp)
            return true;
        return AV::rescale(picture.timestamp(), demuxer->timeBase(videoStream), microseconds)
               <= begin;
    }

    std::int64_t inStream(std::int64_t time, int stream) const {
        return time == endless ? endless
                               : AV::rescale(time, microseconds, demuxer->timeBase(stream));
    }

    void open() {
        demuxer = std::make_unique<AV::Demuxer>(settings.path, [this] { return stop.requested(); });
        chooseStreams();
        chooseSpan();
        if (audioStream >= 0)
            audioDecoder = std::make_unique<AV::Decoder>(*demuxer, audioStream);
        seek();
        packets = std::make_unique<SharedDemuxer>(*demuxer, stop);
        for (const int stream : {videoStream, audioStream}) {
            if (stream >= 0)
                packets->keep(stream);
        }
        if (videoStream >= 0) {
            video = std::make_unique<ClipVideo>(*demuxer, *packets, videoStream,
                                                inStream(begin, videoStream),
                                                inStream(end, videoStream), stop);
            // The sound starts with the first picture.
            begin = video->firstMicroseconds();
        }
        packets->limit(packetCapacity);
    }
};

ClipSource::ClipSource(const ClipSettings& settings, const Stop& stop)
    : d(std::make_unique<Private>(settings, stop)) {
    try {
        d->open();
    } catch (...) {
        // Whatever a stopped opening failed with (an interrupted read), it was stopped.
        if (stop.requested())
            throw Cancelled();
        throw;
    }
}

ClipSource::~ClipSource() = default;

const AV::MediaInfo& ClipSource::info() const {
    return d->demuxer->info();
}

std::int64_t ClipSource::durationMs() const {
    return d->durationMs;
}

VideoSource* ClipSource::video() {
    return d->video.get();
}

std::optional<AudioFormat> ClipSource::inputAudio() const {
    if (d->audioStream < 0)
        return std::nullopt;
    const AV::StreamInfo& info = d->demuxer->info().streams.at(d->audioStream);
    return AudioFormat{-1, info.sampleRate, info.channels};
}

AudioSource* ClipSource::audio(const AudioFormat& format) {
    if (d->audio || !d->audioDecoder)
        return d->audio.get();
    d->audio = std::make_unique<ClipAudio>(std::move(d->audioDecoder),
                                           d->demuxer->timeBase(d->audioStream), *d->packets,
                                           format, d->begin, d->end, d->stop);
    return d->audio.get();
}

} // namespace Velmor::Render
