#include "platform/av/Decoder.h"

#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/av/Packet.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace Velmor::AV {
namespace {

struct FreeContext {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};

} // namespace

class Decoder::Private {
public:
    int streamIndex = -1;
    std::string failure;
    std::unique_ptr<AVCodecContext, FreeContext> context;
    bool draining = false;
    bool drained = false;
    // Read for decodeNext, not yet taken by the codec.
    Packet packet;
    bool pending = false;
};

Decoder::Decoder(const Demuxer& demuxer, int streamIndex, int threads)
    : d(std::make_unique<Private>()) {
    d->streamIndex = streamIndex;
    d->failure = "Can not decode stream " + std::to_string(streamIndex) + " of " + demuxer.path();
    const AVStream* stream = demuxer.stream(streamIndex);
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (!codec)
        throw MediaError(d->failure + ": " + errorText(AVERROR_DECODER_NOT_FOUND));
    d->context.reset(avcodec_alloc_context3(codec));
    if (!d->context)
        throw MediaError(d->failure + ": " + errorText(AVERROR(ENOMEM)));
    check(avcodec_parameters_to_context(d->context.get(), stream->codecpar), d->failure);
    d->context->pkt_timebase = stream->time_base;
    d->context->thread_count = threads;
    check(avcodec_open2(d->context.get(), codec, nullptr), d->failure);
}

Decoder::~Decoder() = default;

int Decoder::streamIndex() const {
    return d->streamIndex;
}

AVCodecContext* Decoder::context() const {
    return d->context.get();
}

int Decoder::reorderDepth() const {
    return d->context->has_b_frames;
}

bool Decoder::send(const Packet* packet) {
    if (d->draining)
        return true;
    const int result = avcodec_send_packet(d->context.get(), packet ? packet->get() : nullptr);
    if (result == AVERROR(EAGAIN))
        return false;
    // A damaged packet costs its frames, not the stream: the decoder goes on with the next.
    if (result == AVERROR_INVALIDDATA)
        return true;
    check(result, d->failure);
    if (!packet)
        d->draining = true;
    return true;
}

bool Decoder::receive(Frame& frame) {
    frame.reset();
    const int result = avcodec_receive_frame(d->context.get(), frame.get());
    if (result == AVERROR(EAGAIN))
        return false;
    if (result == AVERROR_EOF) {
        d->drained = true;
        return false;
    }
    if (result == AVERROR_INVALIDDATA)
        return false;
    check(result, d->failure);
    return true;
}

bool Decoder::drained() const {
    return d->drained;
}

void Decoder::flush() {
    avcodec_flush_buffers(d->context.get());
    d->draining = false;
    d->drained = false;
    d->pending = false;
}

bool Decoder::decodeNext(Demuxer& demuxer, Frame& frame) {
    while (!d->drained) {
        if (receive(frame))
            return true;
        if (d->drained || d->draining)
            return false;
        if (!d->pending) {
            bool more = demuxer.read(d->packet);
            while (more && d->packet.streamIndex() != d->streamIndex)
                more = demuxer.read(d->packet);
            if (!more) {
                send(nullptr);
                continue;
            }
        }
        // A codec that holds frames takes no packet; the packet waits for the next turn.
        d->pending = !send(&d->packet);
    }
    return false;
}

} // namespace Velmor::AV
