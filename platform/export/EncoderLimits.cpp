#include "platform/export/EncoderLimits.h"

namespace Export {
namespace {

std::string size(int width, int height) {
    return std::to_string(width) + ":" + std::to_string(height);
}

void requireBitrate(const char* what, long long bitrate, long long least,
                    const std::string& encoder) {
    if (bitrate >= least)
        return;
    throw OutOfLimits(std::string(what) + " bitrate must be at least " + std::to_string(least)
                      + " bps for " + encoder + ", is " + std::to_string(bitrate));
}

} // namespace

EncoderLimits EncoderLimits::of(const std::string& encoder) {
    EncoderLimits limits;
    // x265 works in blocks of 16 pixels at the least.
    if (encoder == "libx265")
        limits.leastSide = 16;
    return limits;
}

void requireBitrates(const Preset& preset, const std::string& videoEncoder,
                     const std::string& audioEncoder) {
    if (preset.videoBitrateMode() != BitrateMode::Quality) {
        requireBitrate("Video", preset.videoBitrateBps(),
                       EncoderLimits::of(videoEncoder).leastVideoBitrate, videoEncoder);
    }
    requireBitrate("Audio", preset.audioBitrateBps(),
                   EncoderLimits::of(audioEncoder).leastAudioBitrate, audioEncoder);
}

void requireFrameSize(int width, int height, const std::string& encoder, bool fromPreset,
                      const std::string& input) {
    const EncoderLimits limits = EncoderLimits::of(encoder);
    const auto inside = [&limits](int side) {
        return side >= limits.leastSide && side <= limits.mostSide;
    };
    // An odd side is encoded one pixel smaller, for the encoders' chroma.
    if (inside(width & ~1) && inside(height & ~1))
        return;
    const std::string least = size(limits.leastSide, limits.leastSide);
    const std::string most = size(limits.mostSide, limits.mostSide);
    if (fromPreset) {
        throw OutOfLimits("Frame size must be from " + least + " to " + most + " for " + encoder
                          + ", is " + size(width, height));
    }
    throw OutOfLimits("Video size " + size(width, height) + " of " + input + " is outside what "
                      + encoder + " writes, from " + least + " to " + most
                      + "; choose a size with --preset-frame-size");
}

} // namespace Export
