#pragma once

#include <QString>

namespace Media {

class ICreatorAudioDecoder {
public:
    ICreatorAudioDecoder() = default;
    ICreatorAudioDecoder(const ICreatorAudioDecoder&) = delete;
    ICreatorAudioDecoder& operator=(const ICreatorAudioDecoder&) = delete;
    virtual ~ICreatorAudioDecoder();

    // Names the decoder for an audio stream of the given codec.
    virtual QString audioDecoderFor(const QString& codec) const = 0;
};

} // namespace Media
