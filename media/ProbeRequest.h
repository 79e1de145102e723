#pragma once

#include "media/MediaPath.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <QString>

namespace EditorService {

// Which media file to describe: "probe <path>", or {"path": ...} in JSON.
struct ProbeRequest : DefaultRequestImpl<ProbeRequest> {
    using Serializer = MediaPathSerializer<ProbeRequest>;

    static QCommandLineOption pathOption();

    QString description() const override;
    // Throws Error "No media file specified, try --help for all available options".
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        visitField(archive, path, pathOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    QString path;
};

} // namespace EditorService
