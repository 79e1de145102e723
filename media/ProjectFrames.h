#pragma once

#include <cstdint>
#include <utility>
#include <vector>

namespace Project {
struct Edit;
}

namespace EditorService {

// A project's output frames as a split export cuts them: when each starts, in microseconds
// (rounded down, so that the frame a time names is this one), the project's length, and the
// runs of frames no cut may split: each transition, and each fade in or out of a title.
struct ProjectFrames {
    explicit ProjectFrames(const Project::Edit& edit);

    std::vector<std::int64_t> times;
    std::int64_t lengthUs = 0;
    // Frames [first, end).
    std::vector<std::pair<std::int64_t, std::int64_t>> unbroken;
};

} // namespace EditorService
