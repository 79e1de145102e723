#pragma once

#include <string>

namespace Velmor::AV {

class Frame;

// Writes an RGB24 picture as PNG through an open file descriptor, which stays the caller's, so
// that no file is opened by name. `name` names the output in failures: MediaError "Can not
// write <name>: <reason>".
void writePng(const Frame& picture, int descriptor, const std::string& name);

// The same as JPEG (libavcodec's mjpeg at the quality of ffmpeg's -q:v 2, full-range 4:4:4 as
// ffmpeg makes of RGB).
void writeJpeg(const Frame& picture, int descriptor, const std::string& name);

// As PNG or JPEG, as the extension of `name` says (pictureFormatFor).
void writePicture(const Frame& picture, int descriptor, const std::string& name);

} // namespace Velmor::AV
