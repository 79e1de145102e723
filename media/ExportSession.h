#pragma once

#include "media/ExportRequest.h"
#include "media/ExportRun.h"

#include <QtGlobal>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace Media {
class FileController;
}

namespace EditorService {

class ExportRegistry;

// One export from its subscription to its end. It waits for its input's description from the
// file controller, then for a place of the runtime's render-job resource, then runs as a
// concurrent task of the task controller, holding the place until it ends. Whatever comes
// first ends its stream, once: the run's done value or failure, a failure on the way, or a
// cancel. A cancel ends an export that does not run yet at once with Export::ExportCancelled
// "Export cancelled: <output>", and a running one through its run. While it waits for a place
// it emits {"export": {"output", "queued": true, "ahead"}} every QueuedValueTimer::gap,
// timed on `waiting`, so that a time limit on silence sees it alive.
class ExportSession : public std::enable_shared_from_this<ExportSession> {
public:
    ExportSession(ExportRequest request, ExportRunFactory exports,
                  rxcpp::subscriber<nlohmann::json> subscriber,
                  std::shared_ptr<ExportRegistry> registry, rxcpp::observe_on_one_worker waiting);
    ExportSession(const ExportSession&) = delete;
    ExportSession& operator=(const ExportSession&) = delete;
    ~ExportSession();

    // Joins the registry, cancels when the subscriber leaves, and hands the input to `files`.
    void begin(Media::FileController& files);
    // From any thread, any number of times.
    void cancel();

    // The task of a render-job place: runs the export, then gives the place back with
    // `giveBack` before the stream ends. An export that ended before its task ran only gives
    // the place back.
    void run(const Export::ExportSettings& settings, qint64 startedMs,
             const std::function<void()>& giveBack);
    // The task dropped before it ran: gives back the place it held and ends the stream with
    // Export::ExportCancelled; it touches nothing else, no temporary and no output.
    void dropped(const std::function<void()>& giveBack);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace EditorService
