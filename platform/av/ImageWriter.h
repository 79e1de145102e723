#pragma once

#include <string>

namespace Velmor::AV {

class Frame;

// Writes an RGB24 picture as a PNG file, replacing what stood at the path. Throws MediaError
// "Can not write <path>: <reason>"; a file it could not finish is removed.
void writePng(const Frame& picture, const std::string& path);

} // namespace Velmor::AV
