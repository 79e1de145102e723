#include "platform/compositor/StreamFrameReaders.h"

#include "platform/editorlogic/DecodedVideoStream.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/editorlogic/VideoStreamCutter.h"

namespace Composition {
namespace {

class StreamFrameReader : public IFrameReader {
public:
    explicit StreamFrameReader(std::shared_ptr<Media::DecodedVideoStream> stream)
        : stream(std::move(stream)) {}

    const Velmor::AV::Frame& frameAt(std::int64_t milliseconds) override {
        return stream->cutter().frameAt(milliseconds);
    }

private:
    std::shared_ptr<Media::DecodedVideoStream> stream;
};

} // namespace

StreamFrameReaders::StreamFrameReaders(Media::StreamProvider& provider)
    : provider(provider) {}

std::unique_ptr<IFrameReader> StreamFrameReaders::open(const QString& file) {
    return std::make_unique<StreamFrameReader>(provider.videoStream(file));
}

} // namespace Composition
