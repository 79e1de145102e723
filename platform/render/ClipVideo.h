#pragma once

#include "platform/render/VideoSource.h"

#include <cstdint>
#include <memory>

namespace Velmor::AV {
class Demuxer;
}

namespace Velmor::Render {

class SharedDemuxer;
class Stop;

// The pictures of one video stream of a clip: decoded from the packets its demuxer shares, those
// of the span [begin, end) (in the stream's time base) kept and timed from the first at 0, the
// others dropped. The constructor decodes up to that first picture, so where the clip starts is
// settled before anything runs; the packets it reads on the way stay queued for the clip's other
// streams.
//
// One thread at a time, after the constructor; the demuxer and the shared demuxer must outlive
// it. Once past the span it stops decoding and finishes its stream of the shared demuxer.
class ClipVideo : public VideoSource {
public:
    // Throws the decoder's MediaError, "Can not export <path>: no video frame in the range" when
    // no picture falls in the span, and Cancelled when the render stops.
    ClipVideo(const AV::Demuxer& demuxer, SharedDemuxer& packets, int stream, std::int64_t begin,
              std::int64_t end, const Stop& stop);
    ~ClipVideo() override;

    // The stream's size as the file stores it, the decoder's pixel format, the stream's rate,
    // time base, rotation and sample aspect ratio.
    VideoFormat format() const override;
    bool next(AV::Frame& frame) override;
    void finish() override;

    // The input time of the first picture, in microseconds of the file's timestamps.
    std::int64_t firstMicroseconds() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
