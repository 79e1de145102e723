#pragma once

#include "platform/editorlogic/JobQueue.h"
#include "platform/editorlogic/ThumbnailTaskProvider.h"

#include <functional>

namespace Thumbnail {

// Thumbnail tasks handed over from any thread, offered to an extractor in the order they came:
// a Task::JobQueue seen as a task provider, with its contract. Each task is either taken or,
// once the queue is closed, dropped: never both.
class TaskQueue : public TaskProvider {
public:
    // `dropped` is called instead of the task when the queue closes before the task was taken;
    // after close(), at once.
    void push(std::function<void()> task, std::function<void()> dropped = nullptr);
    // The next task, or an empty function when there is none now.
    std::function<void()> takeTask() override;
    // As Task::JobQueue::close: waits for the taken tasks still running, then calls the
    // `dropped` of each task nobody took, on the calling thread. A task of this queue must not
    // call it.
    void close();

private:
    Task::JobQueue tasks;
};

} // namespace Thumbnail
