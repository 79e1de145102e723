#include "media/WaitingLine.h"

#include <algorithm>

namespace EditorService {

std::uint64_t WaitingLine::enter() {
    std::lock_guard<std::mutex> lock(mutex);
    waiting.push_back(nextPlace);
    return nextPlace++;
}

void WaitingLine::leave(std::uint64_t place) {
    std::lock_guard<std::mutex> lock(mutex);
    const auto found = std::lower_bound(waiting.begin(), waiting.end(), place);
    if (found != waiting.end() && *found == place)
        waiting.erase(found);
}

int WaitingLine::ahead(std::uint64_t place) const {
    std::lock_guard<std::mutex> lock(mutex);
    return int(std::lower_bound(waiting.begin(), waiting.end(), place) - waiting.begin());
}

} // namespace EditorService
