#include "platform/projectrender/ProjectThumbnail.h"

#include "platform/av/ImageWriter.h"
#include "platform/av/MediaError.h"
#include "platform/av/OutputFormats.h"
#include "platform/av/Picture.h"
#include "platform/compositor/Compositor.h"
#include "platform/compositor/FileFrameReaders.h"
#include "platform/engine/CoreManager.h"
#include "platform/foundation/OutputFile.h"
#include "platform/proc/Resizer.h"
#include "platform/project/FrameTimes.h"
#include "platform/projectrender/ProjectLoader.h"

#include <cmath>

namespace Velmor::Render {

Thumbnail::Result drawProjectThumbnail(const Thumbnail::Request& request) {
    Project::Edit edit = loadProject(request.path);
    requireRenderPlugins(edit);
    const std::string output = request.output.toStdString();
    Core::CoreManager::Instance().EncoderFor(AV::pictureCodec(AV::pictureFormatFor(output)));
    // Made before anything is composed: a folder that is missing or can not be written fails here.
    OutputFile file(output,
                    request.overwrite ? OutputFile::Existing::Replace : OutputFile::Existing::Keep);
    Composition::Compositor compositor(std::move(edit),
                                       std::make_shared<Composition::FileFrameReaders>());
    const Project::FrameTimes times(compositor.frameRate());
    const std::int64_t index = times.frameAt(request.atMilliseconds);
    if (request.atMilliseconds < 0 || index >= compositor.frameCount())
        throw AV::MediaError("Time " + std::to_string(request.atMilliseconds)
                             + " ms is past the end of " + request.path.toStdString() + " ("
                             + std::to_string(compositor.edit().lengthMs) + " ms)");
    const AV::Frame frame = compositor.frame(index);
    const bool original = request.width < 1 || request.height < 1;
    Proc::SettingsResizer settings;
    settings.width = original ? frame.width() : request.width;
    settings.height = original ? frame.height() : request.height;
    settings.mode = request.mode;
    settings.pixelFormat = AV::pixelFormat("rgb24");
    AV::writePicture(Proc::Resizer(settings).Resize(frame), file.descriptor(), output);
    file.commit();
    const auto startMs = static_cast<std::int64_t>(std::llround(times.startOf(index)));
    return Thumbnail::Result{startMs, settings.width, settings.height};
}

} // namespace Velmor::Render
