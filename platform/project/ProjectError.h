#pragma once

#include <stdexcept>

namespace Project {

// A project that can not be read or rendered, before anything is rendered: the project file's
// path, where in it the bad value stands, and why: "edit.json: tracks[0].clips[1].transition:
// 1000 ms is longer than the clip before it (800 ms)".
class ProjectError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Project
