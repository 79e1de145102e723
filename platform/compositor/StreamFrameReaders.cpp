#include "platform/compositor/StreamFrameReaders.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/compositor/UprightFrames.h"
#include "platform/editorlogic/DecodedVideoStream.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/editorlogic/VideoStreamCutter.h"

namespace Composition {
namespace {

class StreamFrameReader : public IFrameReader {
public:
    explicit StreamFrameReader(std::shared_ptr<Media::DecodedVideoStream> stream)
        : stream(std::move(stream))
        , shown(this->stream->demuxer().info().streams.at(this->stream->decoder().streamIndex())) {}

    const Velmor::AV::Frame& frameAt(std::int64_t milliseconds) override {
        return shown.upright(stream->cutter().frameAt(milliseconds));
    }

private:
    std::shared_ptr<Media::DecodedVideoStream> stream;
    UprightFrames shown;
};

} // namespace

StreamFrameReaders::StreamFrameReaders(Media::StreamProvider& provider)
    : provider(provider) {}

std::unique_ptr<IFrameReader> StreamFrameReaders::open(const QString& file) {
    return std::make_unique<StreamFrameReader>(provider.videoStream(file));
}

} // namespace Composition
