#pragma once

#include <cstdint>
#include <deque>
#include <mutex>

namespace EditorService {

// The order in which work waits for a shared place, to tell each how many wait before it.
// Safe from any thread.
class WaitingLine {
public:
    // A place in the line, behind every place taken before.
    std::uint64_t enter();
    // Leaves the line; a place that left already changes nothing.
    void leave(std::uint64_t place);
    // How many places still in the line come before `place`.
    int ahead(std::uint64_t place) const;

private:
    mutable std::mutex mutex;
    // The places waiting, in the order they were taken: ascending.
    std::deque<std::uint64_t> waiting;
    std::uint64_t nextPlace = 0;
};

} // namespace EditorService
