#pragma once

#include "platform/editorlogic/ThumbnailRequest.h"

namespace Velmor::Render {

// Draws the composed frame of a project at the request's time (the first output frame that
// starts at or after it, as an export's range starts there), fitted to its size, as PNG. The
// project is read, validated and checked against the plug-ins first. Throws ProjectError for a
// bad project, PluginError for a disabled plug-in, MediaError "Time <t> ms is past the end of
// <project> (<length> ms)", and what reading the media and writing the picture throw.
Thumbnail::Result drawProjectThumbnail(const Thumbnail::Request& request);

} // namespace Velmor::Render
