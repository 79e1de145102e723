#pragma once

#include "platform/render/FrameQueue.h"
#include "platform/render/Source.h"

namespace Velmor::Render {

// The consumer's side of a thread boundary: the frames of a source of `Format` as they come out
// of its queue. Lives no longer than the queue.
template <typename Format> class QueuedSource : public Source<Format> {
public:
    QueuedSource(FrameQueue& queue, const Format& format)
        : queue(queue)
        , shape(format) {}

    Format format() const override { return shape; }
    bool next(AV::Frame& frame) override { return queue.take(frame); }
    void finish() override { queue.finish(); }

private:
    FrameQueue& queue;
    const Format shape;
};

} // namespace Velmor::Render
