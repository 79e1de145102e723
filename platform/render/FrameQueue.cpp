#include "platform/render/FrameQueue.h"

#include "platform/render/Cancelled.h"

namespace Velmor::Render {

FrameQueue::FrameQueue(std::size_t capacity)
    : queue(capacity) {}

bool FrameQueue::write(AV::Frame& frame) {
    if (queue.push(std::move(frame)))
        return true;
    if (queue.cancelled())
        throw Cancelled();
    return false;
}

void FrameQueue::close() {
    queue.close();
}

bool FrameQueue::take(AV::Frame& frame) {
    std::optional<AV::Frame> item = queue.pop();
    if (item) {
        frame = std::move(*item);
        return true;
    }
    if (queue.cancelled())
        throw Cancelled();
    return false;
}

void FrameQueue::finish() {
    queue.finish();
}

void FrameQueue::cancel() {
    queue.cancel();
}

} // namespace Velmor::Render
