#pragma once

#include "media/SegmentRequest.h"
#include "service/requests/DefaultServiceImpl.h"

namespace EditorService {

// Renders one part of an export that many machines share (SegmentRun), through the export
// service: it queues, runs, reports progress, is cancelled and fails as an export of the part's
// file does. The folder is made when missing. With --skip-existing a part whose file and record
// both stand in the folder is not made again: one value {"segment": {"output", "skipped":
// true}}. At its end one value {"segment": {"dir", "index", "count", "frames", "first_frame",
// "bytes", "started_ms", "finished_ms"}}, "index" "audio" for the sound, "count" the parts the
// export has (fewer than asked for when it is short; a part past them writes nothing).
class SegmentService : public DefaultServiceImpl<SegmentRequest> {
public:
    // "segment".
    static QString serviceId();

    using DefaultServiceImpl<SegmentRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<SegmentRequest>& requests) override;
};

} // namespace EditorService
