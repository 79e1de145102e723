#include "platform/foundation/CallLog.h"

#include <mutex>

namespace Velmor::Testing {
namespace {

struct Log {
    std::mutex mutex;
    std::vector<std::string> entries;
    CallLog::Observer observer;
};

Log& log() {
    static Log instance;
    return instance;
}

} // namespace

void CallLog::record(std::string entry) {
    Observer observer;
    {
        std::lock_guard<std::mutex> lock(log().mutex);
        log().entries.push_back(entry);
        observer = log().observer;
    }
    if (observer)
        observer(entry);
}

std::vector<std::string> CallLog::entries() {
    std::lock_guard<std::mutex> lock(log().mutex);
    return log().entries;
}

void CallLog::clear() {
    std::lock_guard<std::mutex> lock(log().mutex);
    log().entries.clear();
}

void CallLog::setObserver(Observer observer) {
    std::lock_guard<std::mutex> lock(log().mutex);
    log().observer = std::move(observer);
}

} // namespace Velmor::Testing
