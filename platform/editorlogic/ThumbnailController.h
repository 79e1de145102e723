#pragma once

#include "platform/editorlogic/ThumbnailRequest.h"

#include <exception>
#include <functional>
#include <memory>
#include <stdexcept>

namespace Thumbnail {

class Extractor;
class TaskQueue;

// The failure an extraction ends with when it never runs, because the controller went first or
// nobody wanted the picture any more: "Thumbnail cancelled: <output>".
class ThumbnailCancelled : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Schedules thumbnail extraction; shares the ownership of its extractor. Extractions run as
// tasks of the editor's task controller, so that they count as its busy work. The destructor
// waits for the extraction running, if any, and ends each queued one with ThumbnailCancelled,
// on the destroying thread.
class Controller {
public:
    using Done = std::function<void(const Result& result, std::exception_ptr error)>;
    // Whether the picture is still wanted; asked on the task controller's thread just before
    // the extraction.
    using Wanted = std::function<bool()>;

    explicit Controller(std::shared_ptr<Extractor> extractor);
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();

    // The controller constructed last that is still alive; null when there is none.
    static Controller* instance();

    const std::shared_ptr<Extractor>& extractor() const;
    // Queues the extraction on the task controller's thread and calls done there with the
    // result, or with the failure. done is called exactly once: with ThumbnailCancelled when
    // the controller is destroyed before the extraction ran (then on the destroying thread),
    // or when wanted says no (then nothing is read or written). Throws std::logic_error when
    // no task controller runs, and then calls done never.
    void extract(const Request& request, Done done, Wanted wanted = nullptr);

private:
    std::shared_ptr<Extractor> sharedExtractor;
    std::shared_ptr<TaskQueue> tasks;
};

} // namespace Thumbnail
