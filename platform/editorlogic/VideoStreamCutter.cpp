#include "platform/editorlogic/VideoStreamCutter.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Media {

using Velmor::AV::Frame;
using Velmor::AV::MediaError;

class VideoStreamCutter::Private {
public:
    Velmor::AV::Demuxer& demuxer;
    Velmor::AV::Decoder& decoder;
    AVStream* stream;
    // The file's start, in the stream's time base: times asked for count from it.
    std::int64_t start;
    Frame current;
    Frame ahead;
    bool hasCurrent = false;
    bool hasAhead = false;
    int seeks = 0;

    Private(Velmor::AV::Demuxer& demuxer, Velmor::AV::Decoder& decoder)
        : demuxer(demuxer)
        , decoder(decoder)
        , stream(demuxer.stream(decoder.streamIndex())) {
        const std::int64_t fileStart = demuxer.context()->start_time;
        start = fileStart == AV_NOPTS_VALUE
                    ? 0
                    : av_rescale_q(fileStart, AV_TIME_BASE_Q, stream->time_base);
    }

    std::int64_t toStream(std::int64_t milliseconds) const {
        return start + av_rescale_q(milliseconds, AVRational{1, 1000}, stream->time_base);
    }

    std::int64_t toMilliseconds(std::int64_t timestamp) const {
        return av_rescale_q(timestamp - start, stream->time_base, AVRational{1, 1000});
    }

    // Whether decoding on from the current frame reaches the target before a key frame would.
    // The index counts in decoding order, which runs ahead of display order by the frames the
    // codec holds back; the current frame's place there is its packet's.
    bool decodingOnIsCheaper(std::int64_t target) const {
        if (!hasCurrent || current.timestamp() > target)
            return false;
        const int entry =
            av_index_search_timestamp(stream, target - reorderDelay(), AVSEEK_FLAG_BACKWARD);
        if (entry < 0)
            return true;
        const std::int64_t decoded =
            current->pkt_dts != AV_NOPTS_VALUE ? current->pkt_dts : current.timestamp();
        return avformat_index_get_entry(stream, entry)->timestamp <= decoded;
    }

    std::int64_t reorderDelay() const {
        const AVRational rate = stream->avg_frame_rate;
        if (rate.num <= 0 || rate.den <= 0)
            return 0;
        return decoder.context()->has_b_frames * av_rescale_q(1, av_inv_q(rate), stream->time_base);
    }

    void seek(std::int64_t target) {
        demuxer.seek(stream->index, target);
        decoder.flush();
        hasCurrent = false;
        hasAhead = false;
        ++seeks;
    }

    // Seeks to the target and decodes to it. A key frame found by decoding order may show after
    // the target; the seek then steps back, a second, two, four..., until a frame at or before
    // the target comes out or the stream's start is reached.
    void seekTo(std::int64_t target) {
        const std::int64_t second = av_rescale_q(1, AVRational{1, 1}, stream->time_base);
        const std::int64_t first = stream->start_time != AV_NOPTS_VALUE ? stream->start_time : 0;
        std::int64_t back = 0;
        while (true) {
            seek(target - back);
            decodeTo(target);
            if (hasCurrent || !hasAhead || target - back <= first)
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
    if (d->decodingOnIsCheaper(target))
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
