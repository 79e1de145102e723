#pragma once

#include "platform/av/Rational.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Velmor::AV {

// One stream of a media file, named as the libraries name things.
struct StreamInfo {
    int index = 0;
    // "video", "audio", "subtitle", "data", "attachment" or "unknown".
    std::string type;
    // The codec's short name ("h264", "aac"); "none" when unknown.
    std::string codec;
    // Video only.
    int width = 0;
    int height = 0;
    // The average frame rate as "num/den"; "0/0" when unknown.
    std::string frameRate;
    std::string pixelFormat;
    // How the picture is turned to be shown, in degrees counterclockwise as the display matrix
    // says (a "rotate" tag, which counts clockwise, read into it); 0 for none.
    int rotation = 0;
    // Whether the display matrix also mirrors the picture (a negative determinant): shown
    // flipped left to right and then turned by rotation + 180°, as a player does.
    bool mirrored = false;
    // The shape of one stored pixel; 1:1 when the file doesn't say.
    Rational sampleAspectRatio{1, 1};
    // A still picture beside the sound (cover art), not a video.
    bool attachedPicture = false;
    // Audio only.
    int sampleRate = 0;
    int channels = 0;
    // Whole milliseconds; nullopt when the file doesn't say.
    std::optional<std::int64_t> durationMs;
};

// What parsing a media file tells of it.
struct MediaInfo {
    std::string path;
    // The demuxer's name, which may list several ("mov,mp4,m4a,3gp,3g2,mj2").
    std::string format;
    // Whole milliseconds, rounded; 0 when unknown.
    std::int64_t durationMs = 0;
    // Bits per second; nullopt when unknown.
    std::optional<std::int64_t> bitRate;
    // Bytes.
    std::int64_t size = 0;
    std::vector<StreamInfo> streams;
};

} // namespace Velmor::AV
