#include "host/services/PresetsService.h"

#include "platform/export/PresetProvider.h"

namespace {

rxcpp::observable<nlohmann::json> presetSettings() {
    return rxcpp::observable<>::create<nlohmann::json>(
               [](rxcpp::subscriber<nlohmann::json> subscriber) {
                   std::vector<nlohmann::json> values;
                   try {
                       Export::PresetProvider provider(nullptr);
                       provider.load();
                       provider.selectTag("format_clive");
                       for (const std::string& id : provider.availablePresets()) {
                           provider.selectPreset(id);
                           values.push_back(provider.preset().toJson());
                       }
                   } catch (...) {
                       subscriber.on_error(std::current_exception());
                       return;
                   }
                   for (const auto& value : values) {
                       if (!subscriber.is_subscribed())
                           return;
                       subscriber.on_next(value);
                   }
                   subscriber.on_completed();
               })
        .as_dynamic();
}

} // namespace

QString PresetsRequest::description() const {
    return QStringLiteral("Emit the settings of every export preset, one value per preset");
}

QString PresetsService::serviceId() {
    return QStringLiteral("presets");
}

rxcpp::observable<nlohmann::json>
PresetsService::run(const rxcpp::observable<PresetsRequest>& requests) {
    return requests.flat_map([](const PresetsRequest&) { return presetSettings(); }).as_dynamic();
}
