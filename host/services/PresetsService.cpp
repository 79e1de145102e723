#include "host/services/PresetsService.h"

#include "host/services/ListedValues.h"

#include "platform/export/PresetProvider.h"

namespace {

std::vector<nlohmann::json> presetSettings() {
    std::vector<nlohmann::json> values;
    Export::PresetProvider provider(nullptr);
    provider.load();
    provider.selectTag("format_clive");
    for (const std::string& id : provider.availablePresets()) {
        provider.selectPreset(id);
        values.push_back(provider.preset().toJson());
    }
    return values;
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
    return requests.flat_map([](const PresetsRequest&) { return listedValues(presetSettings); })
        .as_dynamic();
}
