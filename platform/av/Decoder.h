#pragma once

#include <memory>

struct AVCodecContext;

namespace Velmor::AV {

class Demuxer;
class Frame;
class Packet;

// Decodes one stream of a demuxer. Packets go in, frames come out, in the send and receive
// rhythm of the codec; a null packet drains what the codec still holds.
class Decoder {
public:
    // Opens the stream's decoder with `threads` threads (0: as many as the library likes).
    // Throws MediaError "Can not decode stream <index> of <path>: <reason>".
    Decoder(const Demuxer& demuxer, int streamIndex, int threads = 0);
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    ~Decoder();

    int streamIndex() const;
    AVCodecContext* context() const;
    // How many frames the codec holds back to hand them out in display order: 0 for a stream
    // without reordering. A frame comes out that many frames after its packet went in.
    int reorderDepth() const;

    // Hands a packet of the stream over, or with null starts the drain. False when the codec
    // must give out frames before it takes this packet.
    bool send(const Packet* packet);
    // The next frame, its timestamp in the stream's time base; false when the codec needs
    // more input or is drained.
    bool receive(Frame& frame);
    bool drained() const;
    // Forgets everything in flight, for a new start after a seek.
    void flush();

    // Pulls packets from the demuxer until a frame of this stream comes out, dropping the
    // packets of other streams; drains at the end of the file. False once drained.
    bool decodeNext(Demuxer& demuxer, Frame& frame);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
