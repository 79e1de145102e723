#include "platform/editorlogic/ThumbnailController.h"

#include "platform/editorlogic/OnceTask.h"
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
    : sharedExtractor(std::move(extractor))
    , tasks(std::make_shared<TaskQueue>()) {
    Velmor::Testing::Probe::hit("Thumbnail::Controller::Controller");
    if (sharedExtractor)
        sharedExtractor->addProvider(tasks);
    Velmor::Testing::CallLog::record("Thumbnail::Controller::Controller");
    s_instance.store(this);
}

Controller::~Controller() {
    Controller* self = this;
    s_instance.compare_exchange_strong(self, nullptr);
    if (sharedExtractor)
        sharedExtractor->removeProvider(tasks);
    tasks->close();
    Velmor::Testing::CallLog::record("Thumbnail::Controller::~Controller");
}

Controller* Controller::instance() {
    return s_instance.load();
}

const std::shared_ptr<Extractor>& Controller::extractor() const {
    return sharedExtractor;
}

void Controller::extract(const Request& request, Done done, Wanted wanted) {
    auto* taskController = Task::Controller::instance();
    if (!taskController)
        throw std::logic_error("Can not extract a thumbnail: no task controller runs");
    std::weak_ptr<Extractor> weakExtractor = sharedExtractor;
    auto cancel = [output = request.output, done] {
        auto error = std::make_exception_ptr(
            ThumbnailCancelled("Thumbnail cancelled: " + output.toStdString()));
        done({}, std::move(error));
    };
    auto work = [weakExtractor, request] {
        const auto alive = weakExtractor.lock();
        if (!alive)
            throw std::logic_error("Can not extract a thumbnail: the extractor is gone");
        return alive->extract(request);
    };
    auto task = Media::onceTask<Result>(work, done, std::move(wanted), cancel);
    tasks->push(std::move(task), std::move(cancel));
    // The task runs inside process(), which takes every queued task of every provider.
    std::shared_ptr<Extractor> owner = sharedExtractor;
    taskController->submit([owner] { owner->process(); });
}

} // namespace Thumbnail
