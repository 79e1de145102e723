#pragma once

#include <functional>

namespace Thumbnail {

// A source of thumbnail tasks for an extractor.
class TaskProvider {
public:
    TaskProvider() = default;
    TaskProvider(const TaskProvider&) = delete;
    TaskProvider& operator=(const TaskProvider&) = delete;
    virtual ~TaskProvider();

    // The next task, or an empty function when there is none now.
    virtual std::function<void()> takeTask() = 0;
};

} // namespace Thumbnail
