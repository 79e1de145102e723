#include "platform/av/OutputFormats.h"

#include "platform/av/MediaError.h"

#include <algorithm>
#include <cctype>

namespace Velmor::AV {
namespace {

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

std::string extensionOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || dot <= nameStart)
        return {};
    return path.substr(dot + 1);
}

std::string containerFor(const std::string& output, const std::string& presetContainer) {
    const std::string extension = extensionOf(output);
    const std::string wanted = lowered(extension);
    if (wanted.empty())
        return presetContainer;
    // An M4V is an MP4 by another name; libavformat's own M4V muxer ("ipod") refuses HEVC.
    if (wanted == "mp4" || wanted == "m4v")
        return "mp4";
    if (wanted == "mov")
        return "mov";
    if (wanted == "mkv")
        return "matroska";
    throw MediaError("Can not write " + extension + " files: the preset writes " + presetContainer);
}

PictureFormat pictureFormatFor(const std::string& output) {
    const std::string extension = extensionOf(output);
    const std::string wanted = lowered(extension);
    if (wanted.empty() || wanted == "png")
        return PictureFormat::Png;
    if (wanted == "jpg" || wanted == "jpeg")
        return PictureFormat::Jpeg;
    throw MediaError("Can not write " + extension + " files: a thumbnail writes png or jpg");
}

std::string pictureCodec(PictureFormat format) {
    return format == PictureFormat::Jpeg ? "CODEC_ID_MJPEG" : "CODEC_ID_PNG";
}

} // namespace Velmor::AV
