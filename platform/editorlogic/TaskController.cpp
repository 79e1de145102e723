#include "platform/editorlogic/TaskController.h"

#include "platform/editorlogic/JobThread.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <atomic>

namespace Task {
namespace {

std::atomic<Controller*> s_instance{nullptr};

} // namespace

Controller::Controller() {
    Velmor::Testing::Probe::hit("Task::Controller::Controller");
    m_jobs = std::make_unique<JobThread>([this] { emit isBusy(); }, [this] { emit isIdle(); });
    Velmor::Testing::CallLog::record("Task::Controller::Controller");
    s_instance.store(this);
}

Controller::~Controller() {
    Controller* self = this;
    s_instance.compare_exchange_strong(self, nullptr);
    m_jobs.reset();
    Velmor::Testing::CallLog::record("Task::Controller::~Controller");
}

Controller* Controller::instance() {
    return s_instance.load();
}

void Controller::submit(std::function<void()> task) {
    m_jobs->submit(std::move(task));
}

} // namespace Task
