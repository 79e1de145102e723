#pragma once

#include <QString>
#include <memory>

namespace Velmor::AV {
class Decoder;
class Demuxer;
} // namespace Velmor::AV

namespace Media {

class VideoStreamCutter;

// A media file opened for its best video stream: the demuxer, the stream's decoder and the
// cutter that puts it on a time, kept together so that a cache can hand them out again.
class DecodedVideoStream {
public:
    DecodedVideoStream(std::unique_ptr<Velmor::AV::Demuxer> demuxer,
                       std::unique_ptr<Velmor::AV::Decoder> decoder);
    DecodedVideoStream(const DecodedVideoStream&) = delete;
    DecodedVideoStream& operator=(const DecodedVideoStream&) = delete;
    ~DecodedVideoStream();

    const QString& path() const;
    Velmor::AV::Demuxer& demuxer() const;
    Velmor::AV::Decoder& decoder() const;
    VideoStreamCutter& cutter() const;
    void setCutter(std::unique_ptr<VideoStreamCutter> cutter);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Media
