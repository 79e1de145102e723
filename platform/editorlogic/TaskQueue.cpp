#include "platform/editorlogic/TaskQueue.h"

namespace Thumbnail {

void TaskQueue::push(std::function<void()> task) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_tasks.push_back(std::move(task));
}

std::function<void()> TaskQueue::takeTask() {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_tasks.empty())
        return {};
    auto task = std::move(m_tasks.front());
    m_tasks.pop_front();
    return task;
}

} // namespace Thumbnail
