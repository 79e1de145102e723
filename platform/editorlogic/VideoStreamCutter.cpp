#include "platform/editorlogic/VideoStreamCutter.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Rational.h"

namespace Media {

using Velmor::AV::Frame;
using Velmor::AV::MediaError;
using Velmor::AV::noTimestamp;
using Velmor::AV::Rational;
using Velmor::AV::rescale;

namespace {

const Rational milliseconds{1, 1000};
const Rational microseconds{1, 1000000};

} // namespace

class VideoStreamCutter::Private {
public:
    Velmor::AV::Demuxer& demuxer;
    Velmor::AV::Decoder& decoder;
    int stream;
    Rational timeBase;
    // The file's origin, in the stream's time base: times asked for count from it.
    std::int64_t start;
    Frame current;
    Frame ahead;
    bool hasCurrent = false;
    bool hasAhead = false;
    int seeks = 0;

    Private(Velmor::AV::Demuxer& demuxer, Velmor::AV::Decoder& decoder)
        : demuxer(demuxer)
        , decoder(decoder)
        , stream(decoder.streamIndex())
        , timeBase(demuxer.timeBase(stream))
        , start(rescale(demuxer.origin(), microseconds, timeBase)) {}

    std::int64_t toStream(std::int64_t time) const {
        return start + rescale(time, milliseconds, timeBase);
    }

    std::int64_t toMilliseconds(std::int64_t timestamp) const {
        return rescale(timestamp - start, timeBase, milliseconds);
    }

    // Whether decoding on from the current frame reaches the target before a key frame would.
    // The index counts in decoding order, which runs ahead of display order by the frames the
    // codec holds back; the current frame's place there is its packet's.
    bool decodingOnIsCheaper(std::int64_t target) const {
        if (!hasCurrent || current.timestamp() > target)
            return false;
        const std::int64_t keyFrame =
            demuxer.indexedKeyFrameAtOrBefore(stream, target - reorderDelay());
        if (keyFrame == noTimestamp)
            return true;
        const std::int64_t packet = current.packetDecodingTimestamp();
        const std::int64_t decoded = packet != noTimestamp ? packet : current.timestamp();
        return keyFrame <= decoded;
    }

    std::int64_t reorderDelay() const {
        const Rational rate = demuxer.frameRate(stream);
        if (rate.num <= 0 || rate.den <= 0)
            return 0;
        return decoder.reorderDepth() * rescale(1, Rational{rate.den, rate.num}, timeBase);
    }

    void seek(std::int64_t target) {
        demuxer.seek(stream, target);
        decoder.flush();
        hasCurrent = false;
        hasAhead = false;
        ++seeks;
    }

    // Seeks to the target and decodes to it. A seek lands where the container's index or its
    // timestamps say, which may be past the key frame that the target needs (MPEG-TS and MPEG-PS
    // know only timestamps; an open GOP shows its first pictures before its key frame); the seek
    // then steps back a second, two, four..., until a frame at or before the target comes out,
    // or the seek went to the file's head: a second before the stream's first frame, earlier
    // than any packet of it.
    void seekTo(std::int64_t target) {
        const std::int64_t second = rescale(1, Rational{1, 1}, timeBase);
        const std::int64_t streamStart = demuxer.streamStartTime(stream);
        const std::int64_t head = (streamStart != noTimestamp ? streamStart : start) - second;
        std::int64_t back = 0;
        while (true) {
            seek(target - back);
            decodeTo(target);
            if (hasCurrent || target - back < head)
                return;
            back = back == 0 ? second : back * 2;
        }
    }

    void decodeTo(std::int64_t target) {
        if (hasAhead) {
            if (ahead.timestamp() > target)
                return;
            std::swap(current, ahead);
            hasCurrent = true;
            hasAhead = false;
        }
        Frame next;
        while (decoder.decodeNext(demuxer, next)) {
            if (next.timestamp() > target) {
                std::swap(ahead, next);
                hasAhead = true;
                return;
            }
            std::swap(current, next);
            hasCurrent = true;
        }
    }
};

VideoStreamCutter::VideoStreamCutter(Velmor::AV::Demuxer& demuxer, Velmor::AV::Decoder& decoder)
    : d(std::make_unique<Private>(demuxer, decoder)) {}

VideoStreamCutter::~VideoStreamCutter() = default;

const Frame& VideoStreamCutter::frameAt(std::int64_t milliseconds) {
    // A file that tells no duration, a still picture, shows its last frame at any time.
    const std::int64_t duration = d->demuxer.info().durationMs;
    if (duration > 0 && milliseconds > duration) {
        throw MediaError("Time " + std::to_string(milliseconds) + " ms is past the end of "
                         + d->demuxer.path() + " (" + std::to_string(duration) + " ms)");
    }
    const std::int64_t target = d->toStream(milliseconds);
    // A pipe is read forward: a time it has passed already is gone.
    if (!d->demuxer.canSeek() && d->hasCurrent && d->current.timestamp() > target) {
        throw MediaError("Can not seek in media file: " + d->demuxer.path()
                         + ": a pipe is read forward only, and is past "
                         + std::to_string(milliseconds) + " ms");
    }
    if (!d->demuxer.canSeek() || d->decodingOnIsCheaper(target))
        d->decodeTo(target);
    else
        d->seekTo(target);
    if (!d->hasCurrent && d->hasAhead) {
        // Before the first frame the first frame shows.
        std::swap(d->current, d->ahead);
        d->hasCurrent = true;
        d->hasAhead = false;
    }
    if (!d->hasCurrent)
        throw MediaError("No frame in " + d->demuxer.path());
    return d->current;
}

std::int64_t VideoStreamCutter::frameMilliseconds() const {
    return d->hasCurrent ? d->toMilliseconds(d->current.timestamp()) : 0;
}

int VideoStreamCutter::seeks() const {
    return d->seeks;
}

} // namespace Media
