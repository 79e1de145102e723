#pragma once

#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <QStringList>

// Which content to list: "content <kind>" or "--kind=<kind>", one of transitions, pan-zoom,
// overlays and themes; {"kind": ...} in JSON.
struct ContentRequest : EditorService::DefaultRequestImpl<ContentRequest> {
    class Serializer;

    static QCommandLineOption kindOption();
    // transitions, pan-zoom, overlays, themes.
    static const QStringList& kinds();

    QString description() const override;
    // Throws Error "No content kind specified, expects transitions, pan-zoom, overlays or
    // themes" and "Unknown content \"<kind>\", expects transitions, pan-zoom, overlays or themes".
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        EditorService::visitField(archive, kind, kindOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    QString kind;
};

// Reads the first positional argument as the kind.
class ContentRequest::Serializer : public EditorService::DefaultRequestSerializer<ContentRequest> {
public:
    std::unique_ptr<EditorService::Request> loadFromCli(const QStringList& arguments) override;
};
