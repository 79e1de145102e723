#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace EditorService {

// How an export's video is cut into parts that machines render apart: runs of consecutive
// pictures of equal length (one picture apart when they don't divide evenly), each lasting at least
// minimumUs, so that a short export has fewer parts than asked for.
class SegmentPlan {
public:
    static constexpr std::int64_t minimumUs = 2000000;

    // One part: its pictures, and the span of the input they show in, in microseconds; `toUs`
    // is the next part's first picture, or for the last part the range's end, else half a
    // picture past the last one.
    struct Part {
        std::int64_t firstFrame = 0;
        std::int64_t frames = 0;
        std::int64_t fromUs = 0;
        std::int64_t toUs = 0;
    };

    // Pictures [first, end) of the input that no cut may split.
    using Unbroken = std::vector<std::pair<std::int64_t, std::int64_t>>;

    // `frameTimes`: when each picture of the input shows, earliest first; `range` the export's
    // span in microseconds (none: the whole input); `count` the parts asked for (at least 1). A
    // cut that would fall inside a run of `unbroken` moves to the nearer of its ends (the
    // earlier on a tie).
    SegmentPlan(const std::vector<std::int64_t>& frameTimes,
                const std::optional<std::pair<std::int64_t, std::int64_t>>& range, int count,
                const Unbroken& unbroken = {});

    // The parts there are: `count`, or fewer for a short export; at least 1.
    int count() const;
    // The export's pictures.
    std::int64_t frames() const;
    // Part `index`, 0 up to count() - 1.
    Part part(int index) const;

private:
    std::vector<std::int64_t> times;
    // The runs of `unbroken`, counted from the export's first picture.
    Unbroken kept;
    std::int64_t endUs = 0;
    int parts = 1;

    std::int64_t firstOf(int index) const;
};

} // namespace EditorService
