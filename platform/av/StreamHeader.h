#pragma once

#include <string>

namespace Velmor::AV {

class Demuxer;

// What a decoder of stream `index` of `source` is set up from, as bytes: the codec, the picture's
// size and pixel format (or the sound's rate and channels), and the codec's own header (H.264's
// and HEVC's parameter sets). Two streams with the same bytes decode alike, so that the packets
// of one may follow the other's.
std::string streamHeader(const Demuxer& source, int index);

} // namespace Velmor::AV
