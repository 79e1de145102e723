#pragma once

#include "platform/project/EditReader.h"

#include <string>

namespace EditorService::Testing {

// A project file's text around the given tracks: "tracks": [<tracks>].
inline std::string projectWithTracks(const std::string& tracks, const std::string& more = "") {
    return R"({"reelsmith_project": 1, )" + more + R"("tracks": [)" + tracks + "]}";
}

// A project of one video track of the given clips.
inline std::string projectWithClips(const std::string& clips, const std::string& more = "") {
    return projectWithTracks(R"({"type": "video", "clips": [)" + clips + "]}", more);
}

inline Project::Edit readText(const std::string& text,
                              const Project::IThemes& themes = Project::NoThemes()) {
    return Project::readEditFrom(text, QStringLiteral("projects/edit.json"), themes);
}

} // namespace EditorService::Testing
