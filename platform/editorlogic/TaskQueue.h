#pragma once

#include "platform/editorlogic/ThumbnailTaskProvider.h"

#include <deque>
#include <mutex>

namespace Thumbnail {

// Tasks handed over from any thread, taken in the order they came.
class TaskQueue : public TaskProvider {
public:
    void push(std::function<void()> task);
    std::function<void()> takeTask() override;

private:
    std::mutex mutex;
    std::deque<std::function<void()>> tasks;
};

} // namespace Thumbnail
