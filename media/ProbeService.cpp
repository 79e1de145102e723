#include "media/ProbeService.h"

#include "media/CallbackStream.h"
#include "media/ProjectInputs.h"
#include "media/QueuedValue.h"
#include "media/RuntimeAccess.h"
#include "platform/editorlogic/FileController.h"
#include "platform/rxapp/RxApp.h"

#include <stdexcept>

namespace EditorService {
namespace {

nlohmann::json describe(const Velmor::AV::StreamInfo& stream) {
    nlohmann::json value{{"index", stream.index}, {"type", stream.type}, {"codec", stream.codec}};
    if (stream.type == "video") {
        value["width"] = stream.width;
        value["height"] = stream.height;
        value["frame_rate"] = stream.frameRate;
        value["pixel_format"] = stream.pixelFormat;
        value["rotation"] = stream.rotation;
        value["sample_aspect_ratio"] = std::to_string(stream.sampleAspectRatio.num) + ":"
                                       + std::to_string(stream.sampleAspectRatio.den);
    } else if (stream.type == "audio") {
        value["sample_rate"] = stream.sampleRate;
        value["channels"] = stream.channels;
    }
    return value;
}

nlohmann::json describe(const QString& path, const Velmor::AV::MediaInfo& info) {
    nlohmann::json streams = nlohmann::json::array();
    for (const auto& stream : info.streams)
        streams.push_back(describe(stream));
    nlohmann::json bitRate;
    if (info.bitRate)
        bitRate = *info.bitRate;
    return {{"probe",
             {{"path", path.toStdString()},
              {"format", info.format},
              {"duration_ms", info.durationMs},
              {"bit_rate", bitRate},
              {"size", info.size},
              {"streams", streams}}}};
}

// The probes of the process waiting for the file controller's one thread.
const std::shared_ptr<WaitingLine>& waitingProbes() {
    static const auto* line = new std::shared_ptr<WaitingLine>(std::make_shared<WaitingLine>());
    return *line;
}

WaitingPlace placeOf(const QString& path, rxcpp::observe_on_one_worker timer) {
    const std::string input = path.toStdString();
    return {waitingProbes(),
            [input](int ahead) { return queuedValue("probe", "path", input, ahead); },
            std::move(timer)};
}

rxcpp::observable<nlohmann::json> probe(const QString& path, rxcpp::observe_on_one_worker timer) {
    return callbackStream<Velmor::AV::MediaInfo>(
        [path](Media::FileController::Parsed done, Media::FileController::Wanted wanted) {
            requireRuntime(GlobalContextProvider::Media);
            auto* files = Media::FileController::instance();
            if (!files)
                throw std::logic_error("The media context has no file controller");
            parseInput(
                *files, path,
                [done](const ParsedInput& input, std::exception_ptr error) {
                    done(input.info, std::move(error));
                },
                std::move(wanted));
        },
        [path](const Velmor::AV::MediaInfo& info) { return describe(path, info); },
        placeOf(path, std::move(timer)));
}

} // namespace

ProbeService::ProbeService() = default;

ProbeService::ProbeService(rxcpp::observe_on_one_worker waiting)
    : waiting(std::move(waiting)) {}

QString ProbeService::serviceId() {
    return QStringLiteral("probe");
}

rxcpp::observable<nlohmann::json>
ProbeService::run(const rxcpp::observable<ProbeRequest>& requests) {
    const auto ticks = waiting;
    return requests
        .flat_map([ticks](const ProbeRequest& request) {
            return probe(request.path, ticks ? *ticks : RxApp::instance()->mainThread());
        })
        .as_dynamic();
}

} // namespace EditorService
