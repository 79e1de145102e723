#include "media/ProbeService.h"

#include "media/CallbackStream.h"
#include "media/RuntimeAccess.h"
#include "platform/editorlogic/FileController.h"

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

rxcpp::observable<nlohmann::json> probe(const QString& path) {
    return callbackStream<Velmor::AV::MediaInfo>(
        [path](Media::FileController::Parsed done, Media::FileController::Wanted wanted) {
            requireRuntime(GlobalContextProvider::Media);
            auto* files = Media::FileController::instance();
            if (!files)
                throw std::logic_error("The media context has no file controller");
            files->parse(path, std::move(done), std::move(wanted));
        },
        [path](const Velmor::AV::MediaInfo& info) { return describe(path, info); });
}

} // namespace

QString ProbeService::serviceId() {
    return QStringLiteral("probe");
}

rxcpp::observable<nlohmann::json>
ProbeService::run(const rxcpp::observable<ProbeRequest>& requests) {
    return requests.flat_map([](const ProbeRequest& request) { return probe(request.path); })
        .as_dynamic();
}

} // namespace EditorService
