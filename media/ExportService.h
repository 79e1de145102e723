#pragma once

#include "media/ExportRequest.h"
#include "media/ExportRun.h"
#include "service/requests/DefaultServiceImpl.h"

#include <optional>

namespace EditorService {

// Exports a video file with a preset. The output is checked first (ExistingOutput): an existing
// one ends the stream with Error "Output file exists: <path>" unless --overwrite, or with
// --skip-existing gives the one value {"export": {"output", "skipped": true}}; a missing or
// unwritable directory ends it with Error "Can not write to <directory>: <reason>". An output
// that appears while the export runs is kept, with the same Error, unless --overwrite. The
// input is then
// probed by the media layer's file controller, and its frame size is the video that the preset
// context's provider is made for, whose failures pass unchanged; when the runtime ends while
// the input waits to be probed, or while the export waits for its render-job place, the export
// ends with Export::ExportCancelled "Export cancelled: <output>".
//
// The export waits for a place of the render-job resource, holds it while it encodes as a
// concurrent task of the task controller, and gives it back when it ends. While it waits for
// the place it emits {"export": {"output", "queued": true, "ahead"}} every 400 ms, "ahead"
// the exports waiting before it; while it runs it emits {"export": {"output", "progress",
// "frames", "fps"}} at most every 100 ms and at least every 500 ms, "progress" to three
// decimals and "fps" to one; at its end one value {"export": {"input", "output", "done": true,
// "frames", "duration_ms", "bytes", "video": {...}, "audio": {...} or null, "started_ms",
// "finished_ms"}}, the times those of taking and giving back the place, in milliseconds since
// the Unix epoch. Its failures, the pipeline's and the plug-ins' included, end the stream
// unchanged. The export writes through a Velmor::OutputFile, whose temporary is listed with
// Velmor::Temporaries while it exists and removed whatever ends the export other than success.
// Unsubscribing cancels a running export, which ends within one frame's work, removes its
// temporary and frees its place;
// an export that does not run yet ends at once with Export::ExportCancelled, as does one whose
// task the task controller drops when the runtime ends.
class ExportService : public DefaultServiceImpl<ExportRequest> {
public:
    // Runs the pipeline's exporter.
    ExportService();
    // Times the values of a waiting export on the main thread (RxApp::mainThread()).
    explicit ExportService(ExportRunFactory exports);
    // Times them on `waiting`, whose actions must run later, never inside the call that
    // schedules them.
    ExportService(ExportRunFactory exports, rxcpp::observe_on_one_worker waiting);

    // "export".
    static QString serviceId();

    // Cancels every export of the runtime (GlobalContextProvider::instance()) that has not
    // ended, as unsubscribing would: a host that stops calls it, since a command that runs
    // under a script's job limit is not unsubscribed when the script's stream is. The exports
    // of a runtime that is gone, or of another one, are not touched.
    static void cancelAll();

    using DefaultServiceImpl<ExportRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<ExportRequest>& requests) override;

private:
    ExportRunFactory exports;
    std::optional<rxcpp::observe_on_one_worker> waiting;
};

} // namespace EditorService
