#pragma once

#include "service/api/EditorServiceExport.h"

#include <QString>

namespace EditorService {

// A section for the help of a command that takes the preset options: every preset the
// provider offers, the default one first, each with its frame size and the video codecs it
// can write, one preset a line:
//
//   Presets (--preset), with their frame size and video codecs; ...
//     mp4 (default)  the video's size  CODEC_ID_H264 CODEC_ID_HEVC
//     2160p          3840x2160         CODEC_ID_HEVC CODEC_ID_H264
//
// The provider's own failures pass through.
EDITORSERVICE_EXPORT QString presetsHelp();

} // namespace EditorService
