#pragma once

#include <functional>
#include <string>
#include <vector>

namespace Velmor::Testing {

// A process-wide, thread-safe record of what the closed libraries were asked to do, in order.
// The libraries append one entry per observable call ("CoreManager::Initialize"); tests clear
// it, act, and compare the entries.
class CallLog {
public:
    using Observer = std::function<void(const std::string& entry)>;

    static void record(std::string entry);
    static std::vector<std::string> entries();
    static void clear();

    // Called with each entry as it is recorded, on the recording thread and outside the log's
    // lock, so a test can look at the process at that very moment. An empty observer removes
    // the current one. The observer must not record entries itself.
    static void setObserver(Observer observer);
};

} // namespace Velmor::Testing
