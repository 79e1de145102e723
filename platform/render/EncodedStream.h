#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace Velmor::AV {
class Encoder;
class Frame;
} // namespace Velmor::AV

namespace Velmor::Render {

class SharedMuxer;
struct WrittenStream;

// One stream of a shared muxer and the encoder that fills it: what the video and the audio sink
// of a writer have in common. One thread at a time; the muxer must outlive it.
class EncodedStream {
public:
    // Called after each packet is written: the packets so far and the furthest end in ms.
    using Encoded = std::function<void(std::int64_t packets, std::int64_t endMs)>;

    // Declares the stream to the muxer.
    explicit EncodedStream(SharedMuxer& muxer);
    EncodedStream(const EncodedStream&) = delete;
    EncodedStream& operator=(const EncodedStream&) = delete;
    ~EncodedStream();

    // For the encoder's settings, before it opens.
    bool wantsGlobalHeader() const;
    // Takes the encoder, open, and tells the muxer.
    void open(std::unique_ptr<AV::Encoder> encoder);
    bool isOpen() const;
    const AV::Encoder& encoder() const;
    void onEncoded(Encoded encoded);

    // Encodes a frame (timed in the encoder's time base), or with null drains the encoder, and
    // writes what comes out.
    void encode(AV::Frame* frame);
    // The codec and what went into the file; after the muxer finished.
    WrittenStream written() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
