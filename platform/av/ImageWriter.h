#pragma once

#include <string>

namespace Velmor::AV {

class Frame;

// Writes an RGB24 picture as PNG through an open file descriptor, which stays the caller's, so
// that no file is opened by name. `name` names the output in failures: MediaError "Can not
// write <name>: <reason>".
void writePng(const Frame& picture, int descriptor, const std::string& name);

} // namespace Velmor::AV
