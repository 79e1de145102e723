#pragma once

#include "platform/editorlogic/ThumbnailRequest.h"

#include <exception>
#include <functional>
#include <memory>

namespace Thumbnail {

class Extractor;
class TaskQueue;

// Schedules thumbnail extraction; shares the ownership of its extractor. Extractions run as
// tasks of the editor's task controller, so that they count as its busy work.
class Controller {
public:
    using Done = std::function<void(const Result& result, std::exception_ptr error)>;

    explicit Controller(std::shared_ptr<Extractor> extractor);
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();

    // The controller constructed last that is still alive; null when there is none.
    static Controller* instance();

    const std::shared_ptr<Extractor>& extractor() const;
    // Queues the extraction on the task controller's thread and calls done there with the
    // result, or with the failure. Throws std::logic_error when no task controller runs.
    void extract(const Request& request, Done done);

private:
    std::shared_ptr<Extractor> sharedExtractor;
    std::shared_ptr<TaskQueue> tasks;
};

} // namespace Thumbnail
