#pragma once

namespace Export {

// How an encoder is told the size of its video stream. The export library's enumeration; it
// sits with the preset that stores it, so that presets need nothing else of the export library.
// The numbers are stored in preset files.
enum class BitrateMode : int {
    Auto = 0,    // the encoder's own choice
    Quality = 1, // a constant quality, the bitrate being an upper bound
    Bps = 2,     // the bitrate in bits per second, as given
};

} // namespace Export
