#include "platform/render/EncodedStream.h"

#include "platform/av/Encoder.h"
#include "platform/av/Packet.h"
#include "platform/av/Pump.h"
#include "platform/render/SharedMuxer.h"
#include "platform/render/WriterResult.h"

#include <algorithm>

namespace Velmor::Render {

class EncodedStream::Private {
public:
    explicit Private(SharedMuxer& muxer)
        : muxer(muxer)
        , stream(muxer.add()) {}

    SharedMuxer& muxer;
    const int stream;
    std::unique_ptr<AV::Encoder> encoder;
    Encoded encoded;
    AV::Packet packet;
    std::int64_t packets = 0;
    std::int64_t endMs = 0;

    bool deliver(AV::Packet& out) {
        // Packets come in decoding order: the furthest end so far is what is done.
        endMs = std::max(endMs, AV::rescale(out.timestamp() + out.duration(), encoder->timeBase(),
                                            AV::Rational{1, 1000}));
        muxer.write(stream, out);
        ++packets;
        if (encoded)
            encoded(packets, endMs);
        return true;
    }
};

EncodedStream::EncodedStream(SharedMuxer& muxer)
    : d(std::make_unique<Private>(muxer)) {}

EncodedStream::~EncodedStream() = default;

bool EncodedStream::wantsGlobalHeader() const {
    return d->muxer.wantsGlobalHeader();
}

void EncodedStream::open(std::unique_ptr<AV::Encoder> encoder) {
    d->encoder = std::move(encoder);
    d->muxer.opened(d->stream, *d->encoder);
}

bool EncodedStream::isOpen() const {
    return d->encoder != nullptr;
}

const AV::Encoder& EncodedStream::encoder() const {
    return *d->encoder;
}

void EncodedStream::onEncoded(Encoded encoded) {
    d->encoded = std::move(encoded);
}

void EncodedStream::encode(AV::Frame* frame) {
    AV::pump(*d->encoder, frame, d->packet, [this](AV::Packet& out) { return d->deliver(out); });
}

WrittenStream EncodedStream::written() const {
    const AV::Muxer::Written written = d->muxer.written(d->stream);
    WrittenStream stream;
    stream.codec = d->encoder->codecName();
    stream.packets = written.packets;
    stream.bytes = written.bytes;
    stream.durationMs = written.durationMs;
    return stream;
}

} // namespace Velmor::Render
