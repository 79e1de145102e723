#pragma once

#include "platform/editorlogic/ThumbnailTaskProvider.h"

#include <functional>
#include <memory>

namespace Thumbnail {

// Tasks handed over from any thread, taken in the order they came. Each task is either taken
// or, once the queue is closed, dropped: never both.
class TaskQueue : public TaskProvider {
public:
    TaskQueue();
    ~TaskQueue() override;

    // `dropped` is called instead of the task when the queue closes before the task was taken;
    // after close(), at once.
    void push(std::function<void()> task, std::function<void()> dropped = nullptr);
    // The next task, or an empty function when there is none now. A task taken counts as
    // running until it returned and every copy of it is gone.
    std::function<void()> takeTask() override;
    // Takes back the tasks nobody took, waits for the taken ones still running, then calls the
    // `dropped` of each task taken back, in the order they came, on the calling thread. A task
    // of this queue must not call it: it would wait for itself.
    void close();

private:
    struct State;
    std::shared_ptr<State> state;
};

} // namespace Thumbnail
