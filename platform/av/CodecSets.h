#pragma once

#include <map>
#include <string>

namespace Velmor::AV {

// What the media libraries of this process can read: counted by asking them.
struct DecodingSet {
    int demuxers = 0;
    int decoders = 0;
};

// Throws MediaError "The media libraries have no demuxer or no decoder" when either is missing.
DecodingSet findDecoding();

// The encoders the editor uses, by the codec name presets give ("CODEC_ID_H264"), each with the
// library's encoder for it ("libx264"); a codec whose encoder this build lacks is left out.
std::map<std::string, std::string> findEncoders();

} // namespace Velmor::AV
