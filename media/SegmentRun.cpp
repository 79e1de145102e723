#include "media/SegmentRun.h"

#include "media/ProjectFrames.h"
#include "media/SegmentPlan.h"
#include "media/SegmentRequest.h"
#include "platform/av/Demuxer.h"
#include "platform/av/StreamHeader.h"
#include "platform/project/EditReader.h"
#include "platform/projectrender/ProjectLoader.h"
#include "platform/render/VideoFrameTimes.h"
#include "service/api/Error.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFileInfo>

namespace EditorService {
namespace {

using Json = nlohmann::json;
using Range = std::optional<std::pair<std::int64_t, std::int64_t>>;

Range microseconds(const Types::Range& range) {
    if (!range.isValid())
        return std::nullopt;
    return std::make_pair(range.start() * 1000, range.end() * 1000);
}

Json rangeJson(const Types::Range& range) {
    return range.isValid() ? Json::array({range.start(), range.end()}) : Json();
}

// A hash of the header of the file's best stream of the type.
std::string headerHash(const std::string& path, const std::string& type) {
    const Velmor::AV::Demuxer demuxer(path);
    const std::string header = Velmor::AV::streamHeader(demuxer, demuxer.bestStream(type));
    return QCryptographicHash::hash(QByteArray::fromStdString(header), QCryptographicHash::Sha256)
        .toHex()
        .toStdString();
}

// The export's parse has read a project already; one made without it reads the file.
bool isProject(const Export::ExportSettings& settings) {
    return settings.project || Project::looksLikeProject(QString::fromStdString(settings.input));
}

// A project always has its mix, silent or not.
bool hasSound(const Export::ExportSettings& settings) {
    if (isProject(settings))
        return true;
    return Velmor::AV::Demuxer(settings.input).bestStream("audio") >= 0;
}

// A project's frames, its transitions and titles' fades kept whole; a media file's pictures.
SegmentPlan planOf(const Export::ExportSettings& settings, int count) {
    if (isProject(settings)) {
        const ProjectFrames frames(
            settings.project ? *settings.project
                             : Velmor::Render::loadProject(QString::fromStdString(settings.input)));
        Range range = microseconds(settings.range);
        if (!range)
            range = std::make_pair(std::int64_t(0), frames.lengthUs);
        return SegmentPlan(frames.times, range, count, frames.unbroken);
    }
    const std::vector<std::int64_t> times = Velmor::Render::videoFrameTimes(settings.input);
    if (times.empty())
        throw Error("Can not export " + settings.input + ": it has no video");
    return SegmentPlan(times, microseconds(settings.range), count);
}

SegmentRecord recordOf(const Export::ExportSettings& settings, int count) {
    SegmentRecord record;
    record.count = count;
    record.preset = settings.preset.toJson();
    record.range = rangeJson(settings.range);
    record.input = settings.input;
    const QFileInfo input(QString::fromStdString(settings.input));
    record.inputSize = input.size();
    record.inputModifiedMs = input.lastModified().toMSecsSinceEpoch();
    return record;
}

} // namespace

class SegmentRun::Private {
public:
    QString recordPath;
    std::shared_ptr<std::optional<SegmentRecord>> outcome;
    SegmentRecord record;
    std::string output;
    // None for a part the export does not have.
    std::optional<Export::Exporter> exporter;

    void plan(Export::ExportSettings& settings, const SegmentRequest& request) {
        const SegmentPlan plan = planOf(settings, request.count);
        record = recordOf(settings, plan.count());
        if (request.isAudio()) {
            record.audio = true;
            record.frames = plan.frames();
            record.silent = !hasSound(settings);
            if (!record.silent)
                settings.part = Export::ExportSettings::Part{0, 0, false, true};
            return;
        }
        record.index = request.videoIndex();
        if (record.index >= plan.count())
            return;
        const SegmentPlan::Part part = plan.part(record.index);
        record.firstFrame = part.firstFrame;
        record.frames = part.frames;
        record.startUs = part.fromUs - plan.part(0).fromUs;
        settings.part = Export::ExportSettings::Part{part.fromUs, part.toUs, true, false};
    }
};

SegmentRun::SegmentRun(Export::ExportSettings settings, const SegmentRequest& request,
                       QString record, std::shared_ptr<std::optional<SegmentRecord>> outcome)
    : d(std::make_unique<Private>()) {
    d->recordPath = std::move(record);
    d->outcome = std::move(outcome);
    d->output = settings.output;
    d->plan(settings, request);
    if (settings.part)
        d->exporter.emplace(settings);
}

SegmentRun::~SegmentRun() = default;

Export::ExportResult SegmentRun::run(const Export::Exporter::Progress& progress) {
    if (!d->exporter) {
        // The sound of a silent input is a record alone, which the join needs.
        if (d->record.silent)
            d->record.write(d->recordPath);
        *d->outcome = d->record;
        return {};
    }
    Export::ExportResult result = d->exporter->run(progress);
    d->record.header = headerHash(d->output, d->record.audio ? "audio" : "video");
    d->record.write(d->recordPath);
    *d->outcome = d->record;
    return result;
}

void SegmentRun::cancel() {
    if (d->exporter)
        d->exporter->cancel();
}

ExportRunFactory segmentRuns(const SegmentRequest& request, const QString& record,
                             std::shared_ptr<std::optional<SegmentRecord>> outcome) {
    return [request, record, outcome](const Export::ExportSettings& settings) {
        return std::make_unique<SegmentRun>(settings, request, record, outcome);
    };
}

} // namespace EditorService
