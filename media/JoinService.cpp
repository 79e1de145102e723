#include "media/JoinService.h"

#include "media/ExistingOutput.h"
#include "media/ExportRun.h"
#include "media/ExportValues.h"
#include "media/RuntimeAccess.h"
#include "media/SegmentCheck.h"
#include "platform/av/OutputFormats.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/foundation/OutputFile.h"
#include "platform/render/Joiner.h"

#include <QDateTime>

namespace EditorService {
namespace {

using Json = nlohmann::json;

Export::ExportResult joinResult(const Velmor::Render::WriterResult& written) {
    Export::ExportResult result;
    result.durationMs = written.durationMs;
    result.bytes = written.bytes;
    const Velmor::Render::WrittenStream& video = written.streams.at(0);
    result.frames = video.packets;
    result.video =
        Export::ExportResult::Video{video.codec, video.width, video.height, video.bitRate};
    if (written.streams.size() > 1) {
        const Velmor::Render::WrittenStream& audio = written.streams[1];
        result.audio = Export::ExportResult::Audio{audio.codec, audio.sampleRate, audio.channels,
                                                   audio.bitRate};
    }
    return result;
}

Json joined(const JoinRequest& request) {
    const qint64 startedMs = QDateTime::currentMSecsSinceEpoch();
    // The joined file's container follows its name as an export's does, checked before any part
    // is read.
    const std::string output = request.output.toStdString();
    const std::string container = Velmor::AV::containerFor(output, "mp4");
    const SegmentSet set = checkSegments(request.path);
    std::vector<Velmor::Render::JoinedPart> parts;
    for (std::size_t index = 0; index < set.videos.size(); ++index)
        parts.push_back({set.videos[index].toStdString(), set.records[index].startUs});

    Export::ExportSettings settings;
    settings.input = set.records.front().input;
    settings.output = output;
    const auto existing = request.overwrite ? Velmor::OutputFile::Existing::Replace
                                            : Velmor::OutputFile::Existing::Keep;
    Velmor::OutputFile file(settings.output, existing);
    Velmor::Render::Joiner joiner(file.descriptor(), settings.output, container);
    const Velmor::Render::WriterResult written = joiner.join(parts, set.audio.toStdString());
    file.commit();
    return ExportValues::done(settings, joinResult(written), startedMs,
                              QDateTime::currentMSecsSinceEpoch());
}

void joinTo(const JoinRequest& request, rxcpp::subscriber<Json> subscriber) {
    try {
        subscriber.on_next(joined(request));
        subscriber.on_completed();
    } catch (...) {
        subscriber.on_error(ExistingOutput::asCheckFailure(std::current_exception()));
    }
}

// On a task thread of the media runtime, as an export runs.
rxcpp::observable<Json> joinOne(const JoinRequest& request) {
    auto work = rxcpp::observable<>::create<Json>([request](rxcpp::subscriber<Json> subscriber) {
        try {
            requireRuntime(GlobalContextProvider::Media);
            auto* tasks = Task::Controller::instance();
            if (!tasks)
                throw std::logic_error("The media context has no task controller");
            const std::string output = request.output.toStdString();
            tasks->submitConcurrent(
                [request, subscriber] { joinTo(request, subscriber); },
                [subscriber, output] { subscriber.on_error(exportCancelled(output)); });
        } catch (...) {
            subscriber.on_error(std::current_exception());
        }
    });
    return ExistingOutput::checkedFirst("join", request.output, request.overwrite,
                                        request.skipExisting, work.as_dynamic());
}

} // namespace

QString JoinService::serviceId() {
    return QStringLiteral("join");
}

rxcpp::observable<nlohmann::json> JoinService::run(const rxcpp::observable<JoinRequest>& requests) {
    return requests.flat_map([](const JoinRequest& request) { return joinOne(request); })
        .as_dynamic();
}

} // namespace EditorService
