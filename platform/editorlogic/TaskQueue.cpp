#include "platform/editorlogic/TaskQueue.h"

namespace Thumbnail {

void TaskQueue::push(std::function<void()> task) {
    std::lock_guard<std::mutex> lock(mutex);
    tasks.push_back(std::move(task));
}

std::function<void()> TaskQueue::takeTask() {
    std::lock_guard<std::mutex> lock(mutex);
    if (tasks.empty())
        return {};
    auto task = std::move(tasks.front());
    tasks.pop_front();
    return task;
}

} // namespace Thumbnail
