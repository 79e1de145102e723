#pragma once

#include "platform/render/AudioEncoding.h"
#include "platform/render/AudioFormat.h"
#include "platform/render/FrameSink.h"

#include <memory>

namespace Velmor::Render {

class EncodedStream;
class SharedMuxer;
struct WrittenStream;

// The audio stream of a writer: re-chunks blocks of samples into the frames the encoder takes
// (1024 samples for AAC) through an audio FIFO, encodes them from the first block's time on,
// and hands the packets to the muxer. The encoder opens at the first block (at close() when
// none came). Blocks must have the format given, as Writer::audioFormat says it.
//
// One thread at a time; the muxer must outlive it.
class AudioEncoderSink : public FrameSink {
public:
    AudioEncoderSink(SharedMuxer& muxer, const AudioFormat& format, const AudioEncoding& encoding);
    ~AudioEncoderSink() override;

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
