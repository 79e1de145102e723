#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Velmor::Render {

// When each picture of the best video stream of the media file at `path` shows, in microseconds
// from where the file's timeline begins (the times a range counts in), earliest first: read from
// the packets alone, nothing decoded. Empty for a file without video. Throws AV::MediaError
// "Can not open media file: <path>: <reason>" and "Can not read media file: <path>: <reason>".
std::vector<std::int64_t> videoFrameTimes(const std::string& path);

} // namespace Velmor::Render
