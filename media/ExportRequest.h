#pragma once

#include "media/ExistingOutput.h"
#include "media/MediaPath.h"
#include "platform/model/Range.h"
#include "service/presets/PresetContext.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/OptionField.h"
#include "service/requests/ValueForms.h"

#include <QCommandLineOption>
#include <QString>

namespace EditorService {

// One export: "export <path> --output=<file> [the six preset options] [--range=<start>:<end>]
// [--overwrite | --skip-existing]", or the same keys in JSON.
struct ExportRequest : DefaultRequestImpl<ExportRequest> {
    using Serializer = MediaPathSerializer<ExportRequest>;

    static QCommandLineOption pathOption();
    static QCommandLineOption outputOption();
    static QCommandLineOption rangeOption();

    QString description() const override;
    // The presets, the default first, with their sizes and codecs.
    QString additionalHelp() const override;
    // Throws Error "No media file specified, try --help for all available options", "No output
    // file specified, try --help for all available options", "--range must end after it starts,
    // is <start>:<end>" and "--overwrite and --skip-existing can not be given together".
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int version) {
        visitField(archive, path, pathOption());
        visitField(archive, output, outputOption());
        presetContext.serialize(archive, version);
        visitField(archive, range, rangeOption());
        visitField(archive, overwrite, ExistingOutput::overwriteOption());
        visitField(archive, skipExisting, ExistingOutput::skipExistingOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    QString path;
    QString output;
    PresetContext presetContext;
    // A default range exports the whole input.
    Types::Range range;
    bool overwrite = false;
    bool skipExisting = false;
};

} // namespace EditorService
