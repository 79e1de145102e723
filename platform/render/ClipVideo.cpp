#include "platform/render/ClipVideo.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"
#include "platform/av/Pump.h"
#include "platform/render/Cancelled.h"
#include "platform/render/ReadyFrames.h"
#include "platform/render/SharedDemuxer.h"
#include "platform/render/Stop.h"
#include "platform/render/VideoSpan.h"

#include <utility>

namespace Velmor::Render {
namespace {

constexpr AV::Rational microseconds{1, 1000000};

// One frame in the time base; 1 when the rate is unknown.
std::int64_t frameStep(AV::Rational rate, AV::Rational timeBase) {
    return rate.num > 0 ? AV::rescale(1, {rate.den, rate.num}, timeBase) : 1;
}

} // namespace

class ClipVideo::Private {
public:
    Private(const AV::Demuxer& demuxer, SharedDemuxer& packets, int stream, std::int64_t begin,
            std::int64_t end, const Stop& stop)
        : packets(packets)
        , stream(stream)
        , stop(stop)
        , decoder(demuxer, stream)
        , span(begin, end, frameStep(demuxer.frameRate(stream), demuxer.timeBase(stream))) {
        const AV::StreamInfo& info = demuxer.info().streams.at(stream);
        format.width = info.width;
        format.height = info.height;
        format.frameRate = demuxer.frameRate(stream);
        format.timeBase = demuxer.timeBase(stream);
        format.rotation = info.rotation;
        format.mirrored = info.mirrored;
        format.sampleAspectRatio = info.sampleAspectRatio;
    }

    SharedDemuxer& packets;
    const int stream;
    const Stop& stop;
    AV::Decoder decoder;
    VideoSpan span;
    VideoFormat format;
    AV::Packet packet;
    AV::Frame decoded;
    // Pictures of the span decoded and not yet handed out; ended past the span, or drained at
    // the end of the file.
    ReadyFrames ready;

    bool take(AV::Frame& picture) {
        std::int64_t time = picture.timestamp();
        switch (span.place(time)) {
        case VideoSpan::Place::Before:
            return true;
        case VideoSpan::Place::After:
            end();
            return false;
        case VideoSpan::Place::Inside:
            break;
        }
        picture.setTimestamp(time);
        ready.add(std::exchange(picture, AV::Frame()));
        return true;
    }

    void end() {
        ready.end();
        packets.finish(stream);
    }

    // Decodes one more packet of the stream, or drains the decoder at the end of the file.
    void feed() {
        if (stop.requested())
            throw Cancelled();
        auto taker = [this](AV::Frame& picture) { return take(picture); };
        if (packets.next(stream, packet)) {
            AV::pump(decoder, &packet, decoded, taker);
            return;
        }
        AV::pump(decoder, static_cast<const AV::Packet*>(nullptr), decoded, taker);
        end();
    }
};

ClipVideo::ClipVideo(const AV::Demuxer& demuxer, SharedDemuxer& packets, int stream,
                     std::int64_t begin, std::int64_t end, const Stop& stop)
    : d(std::make_unique<Private>(demuxer, packets, stream, begin, end, stop)) {
    while (d->ready.isEmpty() && !d->ready.hasEnded())
        d->feed();
    if (d->ready.isEmpty())
        throw AV::MediaError("Can not export " + demuxer.path() + ": no video frame in the range");
    d->format.pixelFormat = d->ready.front().format();
}

ClipVideo::~ClipVideo() = default;

VideoFormat ClipVideo::format() const {
    return d->format;
}

bool ClipVideo::next(AV::Frame& frame) {
    return d->ready.next(frame, [this] { d->feed(); });
}

void ClipVideo::finish() {
    d->ready.clear();
    d->end();
}

std::int64_t ClipVideo::firstMicroseconds() const {
    return AV::rescale(d->span.first(), d->format.timeBase, microseconds);
}

} // namespace Velmor::Render
