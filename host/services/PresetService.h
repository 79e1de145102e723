#pragma once

#include "service/presets/PresetContext.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/DefaultServiceImpl.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <optional>

// The six preset options, and the size of the project's video that stands in for a project.
struct PresetRequest : EditorService::DefaultRequestImpl<PresetRequest> {
    using Serializer = EditorService::DefaultRequestSerializer<PresetRequest>;

    // "--project-size=<width:height>": without it there is no project, and the frame size
    // override is not applied.
    static QCommandLineOption projectSizeOption();

    QString description() const override;
    // The presets, the default first, with their sizes and codecs.
    QString additionalHelp() const override;
    // Throws Error "Project size must be given as width:height" for a project size given as
    // the original size (the empty text or "original"), which no project has.
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int version) {
        presetContext.serialize(archive, version);
        EditorService::visitField(archive, projectSize, projectSizeOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    EditorService::PresetContext presetContext;
    std::optional<PresetFrameSize> projectSize;
};

// Builds a preset provider from the request's preset options, by PresetContext::makeProvider on
// a video of the project size, and emits the resulting preset's settings as Preset::toJson
// gives them, then completes. The provider is built on the subscribing thread; its failures,
// the Error of an unknown preset, codec or odd frame size included, are the stream's error.
class PresetService : public EditorService::DefaultServiceImpl<PresetRequest> {
public:
    // "preset".
    static QString serviceId();

    using DefaultServiceImpl<PresetRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<PresetRequest>& requests) override;
};
