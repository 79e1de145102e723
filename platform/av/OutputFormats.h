#pragma once

#include <string>

namespace Velmor::AV {

// What a file is written as, told by the extension of its name (in any case), so that a player
// reads what the name promises. A name without an extension takes the default.

// The muxer's short name for an export to `output`: "mp4" for .mp4 and .m4v, "mov" for .mov,
// "matroska" for .mkv, all of which take the presets' H.264, HEVC and AAC; `presetContainer` (the
// preset's own, "mp4") for a name without an extension. Throws MediaError "Can not write <ext>
// files: the preset writes <presetContainer>" for another extension, <ext> as written without
// its dot.
std::string containerFor(const std::string& output, const std::string& presetContainer);

// A still picture's format: PNG for .png and a name without an extension, JPEG for .jpg and
// .jpeg.
enum class PictureFormat { Png, Jpeg };

// Throws MediaError "Can not write <ext> files: a thumbnail writes png or jpg" for another
// extension, <ext> as written without its dot.
PictureFormat pictureFormatFor(const std::string& output);

// The engine's codec name of the format's encoder: "CODEC_ID_PNG" or "CODEC_ID_MJPEG".
std::string pictureCodec(PictureFormat format);

// The extension of a file name without its dot, as written; empty for none. A leading dot names
// a hidden file, no extension.
std::string extensionOf(const std::string& path);

} // namespace Velmor::AV
