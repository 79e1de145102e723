#pragma once

#include "service/presets/PresetContext.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"

namespace EditorService::Testing {

// A request of an export service: a preset context and nothing else, declared once for all
// five archives.
struct PresetRequest : DefaultRequestImpl<PresetRequest> {
    class Serializer;

    PresetContext presetContext;

    template <class Archive> void serialize(Archive& archive, const unsigned int version) {
        presetContext.serialize(archive, version);
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }
};

class PresetRequest::Serializer : public DefaultRequestSerializer<PresetRequest> {};

} // namespace EditorService::Testing
