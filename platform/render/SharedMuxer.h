#pragma once

#include "platform/av/Muxer.h"

#include <memory>
#include <string>

namespace Velmor::AV {
class Encoder;
class Packet;
} // namespace Velmor::AV

namespace Velmor::Render {

// One container file written by the encoders of several streams, each on a thread of its own:
// the streams are declared first (their order is the file's), each encoder says when it has
// opened, and the header is written once all have, with the streams in declared order. Packets
// that come before the header wait for it, then everything goes through the muxer's
// interleaving.
//
// Threads: add() before the encoders run; opened() and write() from the streams' threads;
// finish() once all of them ended. The encoders must outlive finish().
class SharedMuxer {
public:
    // Writes through `descriptor`, as AV::Muxer does; `name` names the output in failures.
    // Throws MediaError "Can not write <name>: <reason>".
    SharedMuxer(int descriptor, const std::string& name, const std::string& format);
    SharedMuxer(const SharedMuxer&) = delete;
    SharedMuxer& operator=(const SharedMuxer&) = delete;
    ~SharedMuxer();

    // Whether encoders must put their headers out of band.
    bool wantsGlobalHeader() const;
    // Declares the next stream; its number for opened() and write(). Throws std::logic_error
    // "Can not write <name>: a stream added after the header".
    int add();
    // The stream's encoder has opened. The last one writes the header and what waited for it;
    // throws MediaError "Can not write <name>: <reason>".
    void opened(int stream, const AV::Encoder& encoder);
    // Writes an encoded packet of the stream, or keeps it until the header is out. The packet
    // is empty afterwards.
    void write(int stream, AV::Packet& packet);
    // Writes the trailer and what waits in the buffer.
    void finish();
    AV::Muxer::Written written(int stream) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
