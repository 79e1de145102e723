#pragma once

#include "platform/compositor/FrameReader.h"

namespace Media {
class StreamProvider;
}

namespace Composition {

// Readers on the media layer's decoded streams: each reader holds a stream of the provider,
// whose cutter decodes on for a time a little ahead and seeks for any other, and gives it back
// to the provider's cache when it goes. The provider is borrowed and must outlive the readers.
class StreamFrameReaders : public IFrameReaders {
public:
    explicit StreamFrameReaders(Media::StreamProvider& provider);

    std::unique_ptr<IFrameReader> open(const QString& file) override;

private:
    Media::StreamProvider& provider;
};

} // namespace Composition
