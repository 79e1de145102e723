#pragma once

#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/DefaultServiceImpl.h"

// A request with no fields: the presets are the export library's.
struct PresetsRequest : EditorService::DefaultRequestImpl<PresetsRequest> {
    using Serializer = EditorService::DefaultRequestSerializer<PresetsRequest>;

    QString description() const override;

    template <class Archive> void serialize(Archive&, const unsigned int) {
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }
};

// Emits the settings of every preset that a command can name with "--preset", one value per
// preset in the export library's order, each as Preset::toJson gives it, then completes. The
// presets are loaded on the subscribing thread; a failure to load them is the stream's error.
class PresetsService : public EditorService::DefaultServiceImpl<PresetsRequest> {
public:
    // "presets".
    static QString serviceId();

    using DefaultServiceImpl<PresetsRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<PresetsRequest>& requests) override;
};
