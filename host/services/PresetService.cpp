#include "host/services/PresetService.h"

#include "platform/export/PresetProvider.h"
#include "platform/model/Video.h"
#include "service/api/Error.h"
#include "service/presets/PresetsHelp.h"

namespace {

rxcpp::observable<nlohmann::json> builtPreset(const PresetRequest& request) {
    return rxcpp::observable<>::create<nlohmann::json>(
               [request](rxcpp::subscriber<nlohmann::json> subscriber) {
                   nlohmann::json value;
                   try {
                       std::optional<Media::Video> video;
                       if (request.projectSize)
                           video = Media::Video{request.projectSize->width,
                                                request.projectSize->height};
                       const auto provider =
                           request.presetContext.makeProvider(video ? &*video : nullptr);
                       value = provider->preset().toJson();
                   } catch (...) {
                       subscriber.on_error(std::current_exception());
                       return;
                   }
                   subscriber.on_next(value);
                   subscriber.on_completed();
               })
        .as_dynamic();
}

} // namespace

QCommandLineOption PresetRequest::projectSizeOption() {
    return QCommandLineOption(
        QStringLiteral("project-size"),
        QStringLiteral("Size of the project's video, which the original frame size stands "
                       "for. Without it the frame size is not overridden."),
        QStringLiteral("width:height"));
}

QString PresetRequest::description() const {
    return QStringLiteral("Emit the settings of an export preset with the given overrides");
}

QString PresetRequest::additionalHelp() const {
    return EditorService::presetsHelp();
}

void PresetRequest::validateOnLoad() const {
    if (projectSize && projectSize->isOriginal())
        throw EditorService::Error("Project size must be given as width:height");
}

QString PresetService::serviceId() {
    return QStringLiteral("preset");
}

rxcpp::observable<nlohmann::json>
PresetService::run(const rxcpp::observable<PresetRequest>& requests) {
    return requests.flat_map([](const PresetRequest& request) { return builtPreset(request); })
        .as_dynamic();
}
