#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace Velmor::Render {

// What a clip source renders of a media file.
struct ClipSettings {
    // The part of the input to render, in microseconds from its start as probe reports it.
    struct Range {
        std::int64_t from = 0;
        std::int64_t to = 0;

        // Throws AV::MediaError "Range <from>:<to> ms is outside <input> (<length> ms)" unless
        // the range is a non-empty part of an input `lengthMs` long.
        void requireWithin(const std::string& input, std::int64_t lengthMs) const;
    };

    std::string path;
    // None: the whole input.
    std::optional<Range> range;
    // An input without a video stream fails; without this, its sound is rendered alone.
    bool requireVideo = true;
    // Whether to render the input's sound (when it has any).
    bool audio = true;
};

} // namespace Velmor::Render
