#include "platform/editorlogic/TaskQueue.h"

namespace Thumbnail {

void TaskQueue::push(std::function<void()> task, std::function<void()> dropped) {
    tasks.push(std::move(task), std::move(dropped));
}

std::function<void()> TaskQueue::takeTask() {
    return tasks.take();
}

void TaskQueue::close() {
    tasks.close();
}

} // namespace Thumbnail
