#pragma once

#include "media/ExistingOutput.h"
#include "media/ExportRequest.h"
#include "media/MediaPath.h"
#include "platform/model/Range.h"
#include "service/presets/PresetContext.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/OptionField.h"
#include "service/requests/ValueForms.h"

#include <QCommandLineOption>
#include <QString>

namespace EditorService {

// One part of an export that many machines share: "segment <path> --index=K --count=N
// --output=<folder> [the six preset options] [--range=<start>:<end>] [--overwrite |
// --skip-existing]", K a number from 0 to N-1 for a part of the video or "audio" for the whole
// export's sound; or the same keys in JSON.
struct SegmentRequest : DefaultRequestImpl<SegmentRequest> {
    using Serializer = MediaPathSerializer<SegmentRequest>;

    static QCommandLineOption pathOption();
    static QCommandLineOption indexOption();
    static QCommandLineOption countOption();
    static QCommandLineOption outputOption();

    QString description() const override;
    QString additionalHelp() const override;
    // Throws Error "No media file specified, try --help for all available options", "No output
    // folder specified, try --help for all available options", "--count must be at least 1",
    // "--index must be between 0 and <count - 1> or audio", "--range must end after it starts,
    // is <start>:<end>" and "--overwrite and --skip-existing can not be given together".
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int version) {
        visitField(archive, path, pathOption());
        visitField(archive, index, indexOption());
        visitField(archive, count, countOption());
        visitField(archive, output, outputOption());
        presetContext.serialize(archive, version);
        visitField(archive, range, ExportRequest::rangeOption());
        visitField(archive, overwrite, ExistingOutput::overwriteOption());
        visitField(archive, skipExisting, ExistingOutput::skipExistingOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    // Whether the part is the sound.
    bool isAudio() const;
    // The part of the video; 0 for the sound.
    int videoIndex() const;

    QString path;
    QString index = QStringLiteral("0");
    int count = 1;
    // The folder the parts go to.
    QString output;
    PresetContext presetContext;
    Types::Range range;
    bool overwrite = false;
    bool skipExisting = false;
};

} // namespace EditorService
