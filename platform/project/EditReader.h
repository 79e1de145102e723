#pragma once

#include "platform/project/Edit.h"
#include "platform/project/Themes.h"

#include <QString>
#include <string>

namespace Project {

// Whether a file reads as a project rather than media: a regular file (never a pipe or a device,
// which looking into would block or consume) whose first byte that is no blank (after a UTF-8
// byte order mark) opens a JSON object. No media file starts so; a file that does is read
// as a project, and reading tells what is wrong with it.
bool looksLikeProject(const QString& path);

// Reads a project file (version 1): parses its UTF-8 JSON, checks that it is a project of a
// version this build reads, fills in its theme's defaults, then reads every part with its
// defaults, resolving media names against the file's folder. Media are not opened here
// (validateEdit does). Every failure is a ProjectError starting with the path as given:
//     "<project>: Can not read the project file: <reason>"
//     "<project>: invalid JSON at line <l>, column <c>: <reason>"
//     "<project>: not a project: expected a JSON object whose \"reelsmith_project\" is 1"
//     "<project>: reelsmith_project: version <n> is not known; this build reads version 1"
//     "<project>: unknown theme \"<name>\" at theme; available: <names>"
//     "<project>: tracks: no video track; a project has exactly one"
//     "<project>: <place>: a second video track; a project has exactly one"
//     "<project>: <place>.clips: the video track has no clips"
//     "<project>: output: give \"width\" and \"height\" together"
// and the messages of JsonNode and ClipReader for the values.
Edit readEdit(const QString& path, const IThemes& themes);
// The same for a file's bytes, already read; `path` names it in messages and its folder
// resolves media names.
Edit readEditFrom(const std::string& bytes, const QString& path, const IThemes& themes);

} // namespace Project
