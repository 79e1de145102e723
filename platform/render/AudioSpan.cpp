#include "platform/render/AudioSpan.h"

#include <algorithm>

namespace Velmor::Render {

AudioSpan::AudioSpan(std::int64_t begin, std::int64_t end)
    : begin(begin)
    , end(end) {}

AudioSpan::Cut AudioSpan::cut(std::int64_t start, std::int64_t samples) const {
    Cut cut;
    if (samples <= 0)
        return cut;
    if (start >= end) {
        cut.past = true;
        return cut;
    }
    cut.skip = std::clamp<std::int64_t>(begin - start, 0, samples);
    // Written so that an endless span does not overflow for a block before the input's 0.
    const std::int64_t beforeEnd = end - samples > start ? samples : end - start;
    cut.keep = std::max<std::int64_t>(beforeEnd - cut.skip, 0);
    cut.time = start + cut.skip - begin;
    return cut;
}

} // namespace Velmor::Render
