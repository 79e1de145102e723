#pragma once

#include "platform/preset/Preset.h"

#include <stdexcept>
#include <string>

namespace Export {

// What the editor's encoders take, checked on a ready preset's values before anything is
// encoded, so that a value out of range fails with its name, the value and the limit rather than
// with the encoder's own words ("Generic error in an external library").
struct EncoderLimits {
    int leastSide = 2;
    int mostSide = 16384;
    // Video in bits per second; x264 and x265 count in kilobits and read less as none.
    long long leastVideoBitrate = 1000;
    long long leastAudioBitrate = 1000;

    // The limits of an encoder by its libavcodec name ("libx264", "libx265", "aac").
    static EncoderLimits of(const std::string& encoder);
};

// A preset's value outside what its encoder takes.
class OutOfLimits : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws OutOfLimits "Video bitrate must be at least <least> bps for <encoder>, is <bps>" when
// the bitrate is used (every mode but Quality), and "Audio bitrate must be at least <least> bps
// for <encoder>, is <bps>".
void requireBitrates(const Preset& preset, const std::string& videoEncoder,
                     const std::string& audioEncoder);

// The size the video is shown at (odd sides are encoded one smaller). Throws OutOfLimits "Frame
// size must be from <least>:<least> to <most>:<most> for <encoder>, is <width>:<height>" for a size
// the preset gives, and "Video size <width>:<height> of <input> is outside what <encoder> writes,
// from <least>:<least> to <most>:<most>; choose a size with --preset-frame-size" for one the input
// gives.
void requireFrameSize(int width, int height, const std::string& encoder, bool fromPreset,
                      const std::string& input);

} // namespace Export
