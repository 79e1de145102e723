#include "platform/render/AudioEncoderSink.h"

#include "platform/av/AudioFifo.h"
#include "platform/av/Encoder.h"
#include "platform/av/Frame.h"
#include "platform/render/EncodedStream.h"
#include "platform/render/WriterResult.h"

#include <optional>

namespace Velmor::Render {

class AudioEncoderSink::Private {
public:
    Private(SharedMuxer& muxer, const AudioFormat& format, const AudioEncoding& encoding)
        : stream(muxer)
        , format(format)
        , encoding(encoding) {}

    EncodedStream stream;
    const AudioFormat format;
    const AudioEncoding encoding;
    std::optional<AV::AudioFifo> fifo;
    // The output time of the first sample: the FIFO numbers its frames from 0.
    std::int64_t offset = 0;
    AV::Frame chunk;

    void open() {
        AV::AudioEncoderSettings settings;
        settings.encoder = encoding.encoder;
        settings.sampleRate = format.sampleRate;
        settings.channels = format.channels;
        settings.bitRate = encoding.bitRate;
        settings.globalHeader = stream.wantsGlobalHeader();
        stream.open(AV::Encoder::audio(settings));
        const AV::Encoder& encoder = stream.encoder();
        fifo.emplace(encoder.sampleFormat(), encoder.sampleRate(), encoder.channels(),
                     encoder.frameSize());
    }

    void encodeChunks(bool flush) {
        while (fifo->read(chunk, flush)) {
            chunk.setTimestamp(chunk.timestamp() + offset);
            stream.encode(&chunk);
        }
    }
};

AudioEncoderSink::AudioEncoderSink(SharedMuxer& muxer, const AudioFormat& format,
                                   const AudioEncoding& encoding)
    : d(std::make_unique<Private>(muxer, format, encoding)) {}

AudioEncoderSink::~AudioEncoderSink() = default;

EncodedStream& AudioEncoderSink::stream() {
    return d->stream;
}

bool AudioEncoderSink::write(AV::Frame& frame) {
    if (!d->stream.isOpen()) {
        d->open();
        d->offset = frame.timestamp();
    }
    d->fifo->write(frame);
    d->encodeChunks(false);
    return true;
}

void AudioEncoderSink::close() {
    if (!d->stream.isOpen())
        d->open();
    d->encodeChunks(true);
    d->stream.encode(nullptr);
}

WrittenStream AudioEncoderSink::written() const {
    WrittenStream written = d->stream.written();
    written.sampleRate = d->stream.encoder().sampleRate();
    written.channels = d->stream.encoder().channels();
    return written;
}

} // namespace Velmor::Render
