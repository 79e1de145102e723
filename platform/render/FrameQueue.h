#pragma once

#include "platform/av/BoundedQueue.h"
#include "platform/av/Frame.h"
#include "platform/render/FrameSink.h"

#include <cstddef>

namespace Velmor::Render {

// The queue of a thread boundary: frames written on one thread (the producer's side, a sink)
// and taken on another (the consumer's side), at most `capacity` of them in between. Any thread
// may call finish() and cancel().
class FrameQueue : public FrameSink {
public:
    explicit FrameQueue(std::size_t capacity);

    // Producer: waits while the queue is full. False once the consumer finished; throws
    // Cancelled once the queue is cancelled.
    bool write(AV::Frame& frame) override;
    // Producer: the end of the frames; the consumer takes what is left, then the end.
    void close() override;

    // Consumer: the next frame, waiting for it; false at the end. Throws Cancelled once the
    // queue is cancelled.
    bool take(AV::Frame& frame);
    // Consumer: takes no more; the producer's next write returns false.
    void finish();

    // The render stops: both sides end at once, what is left is dropped.
    void cancel();

private:
    AV::BoundedQueue<AV::Frame> queue;
};

} // namespace Velmor::Render
