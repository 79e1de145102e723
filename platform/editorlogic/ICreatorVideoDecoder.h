#pragma once

#include "platform/av/Decoder.h"

#include <memory>

namespace Media {

class ICreatorVideoDecoder {
public:
    ICreatorVideoDecoder() = default;
    ICreatorVideoDecoder(const ICreatorVideoDecoder&) = delete;
    ICreatorVideoDecoder& operator=(const ICreatorVideoDecoder&) = delete;
    virtual ~ICreatorVideoDecoder();

    // Opens the decoder of a video stream of the demuxer.
    virtual std::unique_ptr<Velmor::AV::Decoder>
    createVideoDecoder(const Velmor::AV::Demuxer& demuxer, int streamIndex) const = 0;
};

} // namespace Media
