#pragma once

#include <QString>

namespace Media {

class ICreatorVideoDecoder {
public:
    ICreatorVideoDecoder() = default;
    ICreatorVideoDecoder(const ICreatorVideoDecoder&) = delete;
    ICreatorVideoDecoder& operator=(const ICreatorVideoDecoder&) = delete;
    virtual ~ICreatorVideoDecoder();

    // Names the decoder for a video stream of the given codec.
    virtual QString videoDecoderFor(const QString& codec) const = 0;
};

} // namespace Media
