#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"

#include <string>

namespace Velmor::AV {

// Operations on pictures of any pixel format, for the stages that must not see FFmpeg's types.

// The AVPixelFormat named as ffmpeg names it ("yuv420p", "rgb24"). Throws std::invalid_argument
// "No pixel format named \"<name>\"" for any other text.
int pixelFormat(const std::string& name);
// The format's name as ffmpeg writes it; "none" for a number that names no format.
std::string pixelFormatName(int pixelFormat);
// The luma pixels that one chroma sample covers: 2x2 for yuv420p, 2x1 for yuv422p, 1x1 for
// rgb24 and gray8. Offsets into a picture that are multiples of it keep luma and chroma aligned.
Size chromaBlock(int pixelFormat);
// Whether black is 0 in the picture's luma: RGB, grey, the yuvj formats and YUV marked full range.
bool isFullRange(const Frame& picture);

// A frame that shares the picture's buffers (no copy), with its timestamps and properties.
Frame reference(const Frame& picture);
// A picture of buffers of its own holding the same pixels, timestamps and properties.
Frame copyOf(const Frame& picture);
// Makes `view` show `region` of `picture`: the same buffers, its planes starting at the
// region's corner, its size the region's. Chroma offsets are rounded down to the chroma block.
// Throws std::out_of_range when the region is empty or leaves the picture, and
// std::invalid_argument for a format whose pixels can not be addressed by byte (hardware
// frames, bit-packed formats).
void showRegion(Frame& view, const Frame& picture, const Rect& region);
// Paints `region` of `picture` true black for its format and range: 16/128/128 in limited
// YUV, 0/128/128 in full-range YUV, 0 in RGB and grey, opaque alpha. Same throws as showRegion.
void paintBlack(Frame& picture, const Rect& region);
// Gives `to` the timestamps and properties of `from` (pts, durations, time base, sample
// aspect, metadata, side data), with the colour range and colour space of its own format:
// yuvj and grey full range, other YUV limited, RGB unspecified.
void copyProperties(Frame& to, const Frame& from);

} // namespace Velmor::AV
