#include "media/SegmentService.h"

#include "media/ExistingOutput.h"
#include "media/ExportService.h"
#include "media/SegmentFolder.h"
#include "media/SegmentRun.h"

#include <QDir>
#include <QFileInfo>

namespace EditorService {
namespace {

using Json = nlohmann::json;

bool isDone(const Json& value) {
    const auto found = value.find("export");
    return found != value.end() && found->value("done", false);
}

Json segmentValue(const SegmentRequest& request, const std::optional<SegmentRecord>& record,
                  const Json& done) {
    const Json& exported = done.at("export");
    const SegmentRecord part = record.value_or(SegmentRecord{});
    return Json{{"segment",
                 {{"dir", request.output.toStdString()},
                  {"index", request.isAudio() ? Json("audio") : Json(request.videoIndex())},
                  {"count", part.count},
                  {"frames", part.frames},
                  {"first_frame", part.firstFrame},
                  {"bytes", exported.at("bytes")},
                  {"started_ms", exported.at("started_ms")},
                  {"finished_ms", exported.at("finished_ms")}}}};
}

ExportRequest partExport(const SegmentRequest& request, const QString& file) {
    ExportRequest part;
    part.path = request.path;
    part.output = file;
    part.presetContext = request.presetContext;
    part.range = request.range;
    // A file without its record is a part cut short after its file was put in place.
    part.overwrite = request.overwrite || request.skipExisting;
    return part;
}

// The part's export, or its skipped value; decided when subscribed.
rxcpp::observable<Json> partStream(const SegmentRequest& request) {
    QDir().mkpath(request.output);
    const SegmentFolder folder(request.output);
    const int index = request.videoIndex();
    const QString file = request.isAudio() ? folder.audio() : folder.video(index);
    const QString record = request.isAudio() ? folder.audioRecord() : folder.videoRecord(index);
    if (request.skipExisting && QFileInfo::exists(file) && QFileInfo::exists(record))
        return rxcpp::observable<>::just(ExistingOutput::skipped("segment", file.toStdString()));
    auto outcome = std::make_shared<std::optional<SegmentRecord>>();
    ExportService exports(segmentRuns(request, record, outcome));
    return exports.run(rxcpp::observable<>::just(partExport(request, file)))
        .map([request, outcome](const Json& value) {
            return isDone(value) ? segmentValue(request, *outcome, value) : value;
        })
        .as_dynamic();
}

rxcpp::observable<Json> segmentOne(const SegmentRequest& request) {
    return rxcpp::observable<>::create<Json>([request](rxcpp::subscriber<Json> subscriber) {
        partStream(request).subscribe(subscriber);
    });
}

} // namespace

QString SegmentService::serviceId() {
    return QStringLiteral("segment");
}

rxcpp::observable<nlohmann::json>
SegmentService::run(const rxcpp::observable<SegmentRequest>& requests) {
    return requests.flat_map([](const SegmentRequest& request) { return segmentOne(request); })
        .as_dynamic();
}

} // namespace EditorService
