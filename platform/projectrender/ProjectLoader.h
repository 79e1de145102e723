#pragma once

#include "platform/av/MediaInfo.h"
#include "platform/project/Edit.h"

#include <QString>

namespace Velmor::Render {

// Reads a project file with the themes of the package directory and validates it against its
// media, before anything renders. Throws Project::ProjectError with the project's messages.
Project::Edit loadProject(const QString& path);

// Whether rendering the edit takes the engine's plug-ins, before anything renders: "DecodersFF"
// to read its media, "EffectsFF" for its transitions, titles and mix. Throws
// Core::PluginError "Can not render <project>: the plug-in EffectsFF is disabled" (and alike
// for "DecodersFF").
void requireRenderPlugins(const Project::Edit& edit);

// The project as probing describes a media file: its length, and its streams as an export
// writes them by default (H.264 pictures of the output's size and rate, stereo AAC at its
// sample rate). `bytes` is the project file's size.
AV::MediaInfo describeProject(const Project::Edit& edit, std::int64_t bytes);

} // namespace Velmor::Render
