#pragma once

#include <cstdint>

namespace Velmor::Render {

// Where the decoded pictures of a clip fall in the span it renders, [begin, end) in the
// stream's time base: it fills in a picture's unknown timestamp (one frame after the last
// picture's, or begin for the first), tells pictures before the span from those in it and from
// the end, and times those in it from the first of them, at 0. Pure arithmetic, one picture
// after another in output order.
class VideoSpan {
public:
    enum class Place { Before, Inside, After };

    // `step`: one frame in the time base (1 when the rate is unknown).
    VideoSpan(std::int64_t begin, std::int64_t end, std::int64_t step);

    // `timestamp` is the picture's, AV::noTimestamp when unknown; for a picture Inside it
    // becomes its output time.
    Place place(std::int64_t& timestamp);
    // The input time of the first picture Inside; AV::noTimestamp before there is one.
    std::int64_t first() const;

private:
    std::int64_t begin;
    std::int64_t end;
    std::int64_t step;
    std::int64_t last;
    std::int64_t firstInside;
};

} // namespace Velmor::Render
