#pragma once

#include <cstdint>

namespace Velmor::Render {

// The sample-exact cut of a clip's sound to the span it renders, [begin, end) in 1/sample_rate
// of the input's timeline, begin being output time 0: for each block of samples as it comes,
// which of its samples to keep and at what output time. Pure arithmetic.
class AudioSpan {
public:
    struct Cut {
        // The samples to drop from the block's start, then those to keep (0: none).
        std::int64_t skip = 0;
        std::int64_t keep = 0;
        // The output time of the first kept sample.
        std::int64_t time = 0;
        // The block begins at or past the end: nothing more will be kept.
        bool past = false;
    };

    AudioSpan(std::int64_t begin, std::int64_t end);

    // A block of `samples` whose first sample is at `start`.
    Cut cut(std::int64_t start, std::int64_t samples) const;

private:
    std::int64_t begin;
    std::int64_t end;
};

} // namespace Velmor::Render
