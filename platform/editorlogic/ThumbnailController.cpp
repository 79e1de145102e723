#include "platform/editorlogic/ThumbnailController.h"

#include "platform/editorlogic/TaskController.h"
#include "platform/editorlogic/TaskQueue.h"
#include "platform/editorlogic/ThumbnailExtractor.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <atomic>
#include <stdexcept>

namespace Thumbnail {
namespace {

std::atomic<Controller*> s_instance{nullptr};

} // namespace

Controller::Controller(std::shared_ptr<Extractor> extractor)
    : m_extractor(std::move(extractor))
    , m_tasks(std::make_shared<TaskQueue>()) {
    Velmor::Testing::Probe::hit("Thumbnail::Controller::Controller");
    if (m_extractor)
        m_extractor->addProvider(m_tasks);
    Velmor::Testing::CallLog::record("Thumbnail::Controller::Controller");
    s_instance.store(this);
}

Controller::~Controller() {
    Controller* self = this;
    s_instance.compare_exchange_strong(self, nullptr);
    if (m_extractor)
        m_extractor->removeProvider(m_tasks);
    Velmor::Testing::CallLog::record("Thumbnail::Controller::~Controller");
}

Controller* Controller::instance() {
    return s_instance.load();
}

const std::shared_ptr<Extractor>& Controller::extractor() const {
    return m_extractor;
}

void Controller::extract(const Request& request, Done done) {
    auto* tasks = Task::Controller::instance();
    if (!tasks)
        throw std::logic_error("Can not extract a thumbnail: no task controller runs");
    std::weak_ptr<Extractor> extractor = m_extractor;
    m_tasks->push([extractor, request, done = std::move(done)] {
        Result result;
        try {
            const auto alive = extractor.lock();
            if (!alive)
                throw std::logic_error("Can not extract a thumbnail: the extractor is gone");
            result = alive->extract(request);
        } catch (...) {
            done({}, std::current_exception());
            return;
        }
        done(result, nullptr);
    });
    // The task runs inside process(), which takes every queued task of every provider.
    std::shared_ptr<Extractor> owner = m_extractor;
    tasks->submit([owner] { owner->process(); });
}

} // namespace Thumbnail
