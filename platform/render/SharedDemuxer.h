#pragma once

#include <cstddef>
#include <memory>

namespace Velmor::AV {
class Demuxer;
class Packet;
} // namespace Velmor::AV

namespace Velmor::Render {

class Stop;

// One demuxer read by the consumers of several of its streams, each on a thread of its own and
// none waiting for another: whoever wants a packet of its stream and finds none waiting reads
// the file, and keeps the packets of the other streams it meets in their queues. A queue that is
// full makes that reader wait for the queue's consumer, so memory stays flat; packets of a
// stream nobody keeps, or whose consumer finished, are dropped.
//
// So each kept stream needs a consumer that goes on taking: pulling one stream alone, on one
// thread, waits forever once another stream's queue is full. The one exception is a clip
// opening, which reads on one thread before its consumers start: until limit() is called the
// queues have no bound.
//
// Threads: next() and finish() from the stream consumers' threads; keep() and limit() before
// they start. The demuxer must outlive this object, and is read by no one else meanwhile.
class SharedDemuxer {
public:
    SharedDemuxer(AV::Demuxer& demuxer, const Stop& stop);
    SharedDemuxer(const SharedDemuxer&) = delete;
    SharedDemuxer& operator=(const SharedDemuxer&) = delete;
    ~SharedDemuxer();

    // Keeps the stream's packets for a consumer from now on.
    void keep(int stream);
    // At most `capacity` packets wait in each queue from now on.
    void limit(std::size_t capacity);

    // The stream's next packet, in file order; false at the end of the file or once the stream
    // finished. Throws the demuxer's failure (to every consumer that asks after it), and
    // Cancelled when the render stops.
    bool next(int stream, AV::Packet& packet);
    // The stream's consumer takes no more: what waits is dropped, and so is what comes later.
    void finish(int stream);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
