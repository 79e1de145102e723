#pragma once

#include "media/ExistingOutput.h"
#include "media/FrameTime.h"
#include "media/MediaPath.h"
#include "service/presets/PresetContext.h"
#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/OptionField.h"

#include <QCommandLineOption>
#include <QString>
#include <optional>

namespace EditorService {

// One thumbnail: "thumbnail <path> --output=<file.png> [--at=<ms>]
// [--preset-frame-size=original|W:H] [--preset-resize-fill-mode=<mode>]
// [--overwrite | --skip-existing]", or the same keys in JSON. The frame size and the fill mode are
// the preset options of the same names and text forms; without them the frame keeps its size, and
// fits by "Fit".
struct ThumbnailRequest : DefaultRequestImpl<ThumbnailRequest> {
    using Serializer = MediaPathSerializer<ThumbnailRequest>;

    static QCommandLineOption pathOption();
    static QCommandLineOption outputOption();
    static QCommandLineOption atOption();

    QString description() const override;
    // Loading --at throws Error "--at must be a whole number of milliseconds, is <text>".
    // Throws Error "No media file specified, try --help for all available options", "No output
    // file specified, try --help for all available options", "--at must not be negative, is
    // <at>", "Frame size must be at least 1:1, is <width>:<height>" and "--overwrite and
    // --skip-existing can not be given together".
    void validateOnLoad() const override;

    template <class Archive> void serialize(Archive& archive, const unsigned int) {
        visitField(archive, path, pathOption());
        visitField(archive, output, outputOption());
        visitField(archive, at, atOption());
        visitField(archive, frameSize, PresetContext::option(PresetContext::FrameSize));
        visitField(archive, resizeFillMode, PresetContext::option(PresetContext::ResizeFillMode));
        visitField(archive, overwrite, ExistingOutput::overwriteOption());
        visitField(archive, skipExisting, ExistingOutput::skipExistingOption());
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }

    QString path;
    QString output;
    FrameTime at;
    std::optional<PresetFrameSize> frameSize;
    std::optional<Velmor::Proc::SettingsResizer::CustomModes> resizeFillMode;
    bool overwrite = false;
    bool skipExisting = false;
};

} // namespace EditorService
