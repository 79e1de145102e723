#pragma once

#include "../rx-scheduler.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace rxcpp {
namespace schedulers {
namespace detail {

// Actions in time order, first in first out for equal times.
class schedule_queue {
public:
    using time_point = std::chrono::steady_clock::time_point;

    struct item {
        time_point when;
        std::uint64_t order;
        schedulable what;
    };

    bool empty() const { return items.empty(); }
    std::size_t size() const { return items.size(); }
    const item& top() const { return items.front(); }

    void push(time_point when, schedulable what) {
        items.push_back(item{when, next++, std::move(what)});
        std::push_heap(items.begin(), items.end(), later);
    }

    item pop() {
        std::pop_heap(items.begin(), items.end(), later);
        item taken = std::move(items.back());
        items.pop_back();
        return taken;
    }

    std::vector<item> take_all() {
        std::vector<item> taken;
        taken.swap(items);
        return taken;
    }

private:
    static bool later(const item& a, const item& b) {
        return a.when != b.when ? a.when > b.when : a.order > b.order;
    }

    std::vector<item> items;
    std::uint64_t next = 0;
};

} // namespace detail
} // namespace schedulers
} // namespace rxcpp
