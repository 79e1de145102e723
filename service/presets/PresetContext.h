#pragma once

#include "platform/proc/SettingsResizer.h"
#include "service/api/EditorServiceExport.h"
#include "service/requests/OptionField.h"
#include "service/requests/PresetFrameSize.h"
#include "service/requests/ResizeFillMode.h"
#include "service/requests/ValueForms.h"

#include <QCommandLineOption>
#include <QList>
#include <QString>
#include <memory>
#include <optional>

namespace Export {
class PresetProvider;
}
namespace Media {
struct Video;
}

namespace EditorService {

// The export preset that a command asks for, and what it overrides of it. An empty override
// leaves the preset's own value standing.
struct EDITORSERVICE_EXPORT PresetContext {
    enum Option {
        PresetName = 0,
        VideoCodec = 1,
        ResizeFillMode = 2,
        FrameSize = 3,
        VideoBitrate = 4,
        AudioBitrate = 5,
    };

    PresetContext();

    // "mp4", the preset of a context that names none.
    static QString defaultPreset();
    // A copy of the command-line option that fills one field; only the six options are valid.
    static QCommandLineOption option(Option which);
    // Copies of all six options, in the order of Option.
    static QList<QCommandLineOption> options();

    // A new provider, loaded, with the asked-for preset selected and the overrides applied and
    // given back to it. `video` is the project's video; without it the frame size override is
    // not applied. Throws Error for an unknown preset, a codec the preset lacks, or an odd frame
    // size; the provider's own failures pass through.
    std::shared_ptr<Export::PresetProvider> makeProvider(const Media::Video* video) const;

    // Hands the six fields to an archive under their option names, in the order of Option. A
    // request that carries a context calls it from its own field visitor,
    // `presetContext.serialize(archive, version);`. An empty override is left out of the
    // command line and of JSON; `preset` is always written.
    template <class Archive> void serialize(Archive& archive, const unsigned int /*version*/) {
        visitField(archive, preset, option(PresetName));
        visitField(archive, videoCodec, option(VideoCodec));
        visitField(archive, resizeFillMode, option(ResizeFillMode));
        visitField(archive, frameSize, option(FrameSize));
        visitField(archive, videoBitrate, option(VideoBitrate));
        visitField(archive, audioBitrate, option(AudioBitrate));
    }

    QString preset;
    std::optional<QString> videoCodec;
    std::optional<PresetFrameSize> frameSize;
    std::optional<Velmor::Proc::SettingsResizer::CustomModes> resizeFillMode;
    std::optional<qint64> videoBitrate;
    std::optional<qint64> audioBitrate;
};

} // namespace EditorService
