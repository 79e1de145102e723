#pragma once

#include "platform/av/Decoder.h"

#include <memory>

namespace Media {

class ICreatorAudioDecoder {
public:
    ICreatorAudioDecoder() = default;
    ICreatorAudioDecoder(const ICreatorAudioDecoder&) = delete;
    ICreatorAudioDecoder& operator=(const ICreatorAudioDecoder&) = delete;
    virtual ~ICreatorAudioDecoder();

    // Opens the decoder of an audio stream of the demuxer.
    virtual std::unique_ptr<Velmor::AV::Decoder>
    createAudioDecoder(const Velmor::AV::Demuxer& demuxer, int streamIndex) const = 0;
};

} // namespace Media
