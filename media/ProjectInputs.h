#pragma once

#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/ThumbnailController.h"

namespace EditorService {

// Parses an input as export and probe take it: a project file (recognised by its content) is
// read, validated and described as its export would be, on the file controller's thread; any
// other file is parsed as media. Calls done as FileController::parse does.
void parseInput(Media::FileController& files, const QString& path,
                Media::FileController::Parsed done, Media::FileController::Wanted wanted);

// Draws the composed frame of a project at the request's time on the file controller's thread,
// calling done once as Thumbnail::Controller::extract does (ThumbnailCancelled when it is no
// longer wanted or the controller goes first).
void projectThumbnail(Media::FileController& files, const Thumbnail::Request& request,
                      Thumbnail::Controller::Done done, Thumbnail::Controller::Wanted wanted);

} // namespace EditorService
