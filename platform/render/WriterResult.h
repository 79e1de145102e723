#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Velmor::Render {

// What a writer wrote into one stream.
struct WrittenStream {
    // The codec's short name: "h264", "hevc", "aac".
    std::string codec;
    std::int64_t packets = 0;
    std::int64_t bytes = 0;
    // The end of its last packet, from 0.
    std::int64_t durationMs = 0;
    // Bits per second over that duration; 0 for none.
    std::int64_t bitRate = 0;
    // Video only.
    int width = 0;
    int height = 0;
    // Audio only.
    int sampleRate = 0;
    int channels = 0;
};

// What a writer wrote: its streams in the order they were added, the longest of them, and the
// size of the file.
struct WriterResult {
    std::vector<WrittenStream> streams;
    std::int64_t durationMs = 0;
    std::int64_t bytes = 0;
};

} // namespace Velmor::Render
