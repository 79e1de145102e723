#include "platform/render/Writer.h"

#include "platform/av/Encoder.h"
#include "platform/av/MediaError.h"
#include "platform/render/AudioEncoderSink.h"
#include "platform/render/EncodedStream.h"
#include "platform/render/SharedMuxer.h"
#include "platform/render/VideoEncoderSink.h"
#include "platform/render/WrittenBytes.h"

#include <algorithm>
#include <functional>
#include <vector>

namespace Velmor::Render {
class Writer::Private {
public:
    Private(int descriptor, const std::string& name, const std::string& container)
        : descriptor(descriptor)
        , name(name)
        , muxer(descriptor, name, container) {}

    const int descriptor;
    const std::string name;
    SharedMuxer muxer;
    std::vector<std::unique_ptr<VideoEncoderSink>> videos;
    std::vector<std::unique_ptr<AudioEncoderSink>> audios;
    // Per stream, in the order they were added: what it wrote, and its encoded stream.
    std::vector<std::function<WrittenStream()>> streams;
    std::vector<EncodedStream*> encoded;
};

Writer::Writer(int descriptor, const std::string& name, const std::string& container)
    : d(std::make_unique<Private>(descriptor, name, container)) {}

Writer::~Writer() = default;

AudioFormat Writer::audioFormat(const AudioEncoding& encoding, const AudioFormat& offered) {
    const AV::AudioEncoderInput input = AV::Encoder::audioInput(
        {encoding.encoder, offered.sampleRate, offered.channels, encoding.bitRate, false});
    return {input.sampleFormat, input.sampleRate, input.channels};
}

FrameSink& Writer::addVideo(const VideoFormat& format, const VideoEncoding& encoding) {
    d->videos.push_back(std::make_unique<VideoEncoderSink>(d->muxer, format, encoding));
    VideoEncoderSink& sink = *d->videos.back();
    d->streams.push_back([&sink] { return sink.written(); });
    d->encoded.push_back(&sink.stream());
    return sink;
}

FrameSink& Writer::addAudio(const AudioFormat& format, const AudioEncoding& encoding) {
    d->audios.push_back(std::make_unique<AudioEncoderSink>(d->muxer, format, encoding));
    AudioEncoderSink& sink = *d->audios.back();
    d->streams.push_back([&sink] { return sink.written(); });
    d->encoded.push_back(&sink.stream());
    return sink;
}

void Writer::onEncoded(Encoded encoded) {
    if (!d->encoded.empty())
        d->encoded.front()->onEncoded(std::move(encoded));
}

WriterResult Writer::finish() {
    d->muxer.finish();
    WriterResult result;
    for (const auto& stream : d->streams) {
        WrittenStream written = stream();
        written.bitRate = bitRate(written.bytes, written.durationMs);
        result.durationMs = std::max(result.durationMs, written.durationMs);
        result.streams.push_back(written);
    }
    result.bytes = writtenBytes(d->descriptor, d->name);
    return result;
}

} // namespace Velmor::Render
