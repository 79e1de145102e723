#pragma once

#include "media/ExportRun.h"
#include "media/SegmentRecord.h"

#include <QString>
#include <memory>
#include <optional>

namespace EditorService {

struct SegmentRequest;

// One part of a split export as the export service drives it. Made on the task's thread, it
// reads when each picture of the input shows and plans the parts (SegmentPlan); its run
// exports the part's pictures (or the whole export's sound) to the settings' output with
// headers that join, then writes the part's record. A part that a short export does not have
// writes nothing. The record also goes to `outcome`, for the final value.
class SegmentRun : public ExportRun {
public:
    // Throws Error "Can not export <path>: it has no video", and the input's MediaError.
    SegmentRun(Export::ExportSettings settings, const SegmentRequest& request, QString record,
               std::shared_ptr<std::optional<SegmentRecord>> outcome);
    ~SegmentRun() override;

    Export::ExportResult run(const Export::Exporter::Progress& progress) override;
    void cancel() override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

// Makes runs of a segment request's part, its record written to `record`.
ExportRunFactory segmentRuns(const SegmentRequest& request, const QString& record,
                             std::shared_ptr<std::optional<SegmentRecord>> outcome);

} // namespace EditorService
