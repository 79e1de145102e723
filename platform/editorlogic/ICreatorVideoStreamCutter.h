#pragma once

#include <memory>

namespace Velmor::AV {
class Decoder;
class Demuxer;
} // namespace Velmor::AV

namespace Media {

class VideoStreamCutter;

class ICreatorVideoStreamCutter {
public:
    ICreatorVideoStreamCutter() = default;
    ICreatorVideoStreamCutter(const ICreatorVideoStreamCutter&) = delete;
    ICreatorVideoStreamCutter& operator=(const ICreatorVideoStreamCutter&) = delete;
    virtual ~ICreatorVideoStreamCutter();

    // A cutter that puts the decoder's stream on the times asked for; both are borrowed.
    virtual std::unique_ptr<VideoStreamCutter>
    createVideoStreamCutter(Velmor::AV::Demuxer& demuxer, Velmor::AV::Decoder& decoder) const = 0;
};

} // namespace Media
