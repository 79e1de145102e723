#pragma once

#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/ThumbnailController.h"

#include <memory>

namespace Project {
struct Edit;
}

namespace EditorService {

// An input as export and probe take it: its description, and for a project file the project
// itself, read and validated, for the export to render without reading it again.
struct ParsedInput {
    Velmor::AV::MediaInfo info;
    std::shared_ptr<const Project::Edit> project;
};

using InputParsed = std::function<void(const ParsedInput& input, std::exception_ptr error)>;

// Parses an input as export and probe take it: a project file (recognised by its content) is
// read, validated and described as its export would be, on the file controller's thread; any
// other file is parsed as media. Calls done as FileController::parse does.
void parseInput(Media::FileController& files, const QString& path, InputParsed done,
                Media::FileController::Wanted wanted);

// Draws the composed frame of a project at the request's time on the file controller's thread,
// calling done once as Thumbnail::Controller::extract does (ThumbnailCancelled when it is no
// longer wanted or the controller goes first).
void projectThumbnail(Media::FileController& files, const Thumbnail::Request& request,
                      Thumbnail::Controller::Done done, Thumbnail::Controller::Wanted wanted);

} // namespace EditorService
