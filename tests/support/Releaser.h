#pragma once

#include <functional>

namespace EditorService::Testing {

// Calls `release` when it goes: held by the last copy of a job through a shared pointer, it
// says that the job has been let go, run or not.
struct Releaser {
    std::function<void()> release;
    ~Releaser() { release(); }
};

} // namespace EditorService::Testing
