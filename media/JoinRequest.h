#pragma once

#include "media/ExistingOutput.h"
#include "media/MediaPath.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/OptionField.h"
#include "service/requests/ValueForms.h"

#include <QCommandLineOption>
#include <QString>

namespace EditorService {

// The parts of a split export made one file: "join <folder> --output=<file> [--overwrite |
// --skip-existing]", or the same keys in JSON.
struct JoinRequest : DefaultRequestImpl<JoinRequest> {
    using Serializer = MediaPathSerializer<JoinRequest>;

    static QCommandLineOption pathOption();
    static QCommandLineOption outputOption();

    QString description() const override;
    // Throws Error "No segment folder specified, try --help for all available options", "No
    // output file specified, try --help for all available options" and "--overwrite and
    // --skip-existing can not be given together".
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int /*version*/) {
        visitField(archive, path, pathOption());
        visitField(archive, output, outputOption());
        visitField(archive, overwrite, ExistingOutput::overwriteOption());
        visitField(archive, skipExisting, ExistingOutput::skipExistingOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    // The folder of the parts.
    QString path;
    QString output;
    bool overwrite = false;
    bool skipExisting = false;
};

} // namespace EditorService
