#include "platform/editorlogic/TaskController.h"

#include "platform/editorlogic/Workers.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <atomic>

namespace Task {
namespace {

std::atomic<Controller*> s_instance{nullptr};

} // namespace

Controller::Controller() {
    Velmor::Testing::Probe::hit("Task::Controller::Controller");
    jobs = std::make_unique<Workers>(
        1, [this] { enter(); }, [this] { leave(); });
    concurrentJobs = std::make_unique<Workers>(
        0, [this] { enter(); }, [this] { leave(); });
    Velmor::Testing::CallLog::record("Task::Controller::Controller");
    s_instance.store(this);
}

Controller::~Controller() {
    Controller* self = this;
    s_instance.compare_exchange_strong(self, nullptr);
    {
        std::lock_guard<std::mutex> lock(activity);
        silenced = true;
    }
    concurrentJobs.reset();
    jobs.reset();
    Velmor::Testing::CallLog::record("Task::Controller::~Controller");
}

Controller* Controller::instance() {
    return s_instance.load();
}

void Controller::submit(std::function<void()> task, std::function<void()> dropped) {
    jobs->submit(std::move(task), std::move(dropped));
}

void Controller::submitConcurrent(std::function<void()> task, std::function<void()> dropped) {
    concurrentJobs->submit(std::move(task), std::move(dropped));
}

// The serial and the concurrent workers turn busy and idle each by itself; the controller is
// busy while either is. The signals go out under the lock, so that they alternate.
void Controller::enter() {
    std::lock_guard<std::mutex> lock(activity);
    if (activeRunners++ == 0 && !silenced)
        emit isBusy();
}

void Controller::leave() {
    std::lock_guard<std::mutex> lock(activity);
    if (--activeRunners == 0 && !silenced)
        emit isIdle();
}

} // namespace Task
