#pragma once

#include "platform/render/FrameSink.h"
#include "platform/render/VideoEncoding.h"
#include "platform/render/VideoFormat.h"

#include <memory>

namespace Velmor::Render {

class EncodedStream;
class SharedMuxer;
struct WrittenStream;

// The video stream of a writer: encodes pictures as their source timed them and hands the
// packets to the muxer. The encoder opens at the first picture, from its size and pixel format
// and the source's rate and time base (at close() from the format alone, when no picture came).
//
// One thread at a time; the muxer must outlive it.
class VideoEncoderSink : public FrameSink {
public:
    VideoEncoderSink(SharedMuxer& muxer, const VideoFormat& format, const VideoEncoding& encoding);
    ~VideoEncoderSink() override;

    EncodedStream& stream();
    // Throws the encoder's MediaError, and the muxer's.
    bool write(AV::Frame& frame) override;
    void close() override;
    // What went into the file; after the muxer finished.
    WrittenStream written() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
