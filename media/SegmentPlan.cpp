#include "media/SegmentPlan.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <stdexcept>

namespace EditorService {

SegmentPlan::SegmentPlan(const std::vector<std::int64_t>& frameTimes,
                         const std::optional<std::pair<std::int64_t, std::int64_t>>& range,
                         int count, const Unbroken& unbroken) {
    const std::int64_t from = range ? range->first : std::numeric_limits<std::int64_t>::min();
    const std::int64_t to = range ? range->second : std::numeric_limits<std::int64_t>::max();
    std::copy_if(frameTimes.begin(), frameTimes.end(), std::back_inserter(times),
                 [from, to](std::int64_t time) { return time >= from && time < to; });
    if (times.empty())
        return;
    // Where the export's first picture stands among the input's.
    const std::int64_t offset =
        std::lower_bound(frameTimes.begin(), frameTimes.end(), times.front()) - frameTimes.begin();
    for (const auto& [first, end] : unbroken)
        kept.emplace_back(first - offset, end - offset);
    // The last picture lasts as long as the one before it.
    const std::int64_t last = times.size() > 1 ? times.back() - times[times.size() - 2] : 1;
    const std::int64_t length = (range ? to : times.back() + last) - times.front();
    // Half a picture past the last one: inside the input, and past it in any time base.
    endUs = range ? to : times.back() + std::max<std::int64_t>(last / 2, 1);
    const std::int64_t fitting = std::max<std::int64_t>(length / minimumUs, 1);
    parts = static_cast<int>(std::min<std::int64_t>(
        {std::max(count, 1), fitting, static_cast<std::int64_t>(times.size())}));
}

int SegmentPlan::count() const {
    return parts;
}

std::int64_t SegmentPlan::frames() const {
    return static_cast<std::int64_t>(times.size());
}

std::int64_t SegmentPlan::firstOf(int index) const {
    const std::int64_t cut = frames() * index / parts;
    for (const auto& [first, end] : kept) {
        if (first < cut && cut < end)
            return cut - first <= end - cut ? first : end;
    }
    return cut;
}

SegmentPlan::Part SegmentPlan::part(int index) const {
    if (index < 0 || index >= parts)
        throw std::out_of_range("No part " + std::to_string(index));
    Part part;
    part.firstFrame = firstOf(index);
    part.frames = firstOf(index + 1) - part.firstFrame;
    if (part.frames == 0)
        return part;
    part.fromUs = times[part.firstFrame];
    part.toUs = index + 1 < parts ? times[firstOf(index + 1)] : endUs;
    return part;
}

} // namespace EditorService
