#include "service/services/LimitOnSilence.h"

#include "tests/support/ManualScheduler.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <new>
#include <optional>
#include <string>
#include <vector>

// Counts this thread's allocations while `counting` is set. The whole executable allocates
// through these, which is why the test has a binary of its own.
namespace {
thread_local bool counting = false;
thread_local long allocations = 0;
} // namespace

void* operator new(std::size_t size) {
    if (counting)
        ++allocations;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace EditorService {
namespace {

using json = nlohmann::json;
using Testing::ManualScheduler;

// The allocations of the time limit's chain while `count` values pass it, each a string longer
// than a short-string buffer, so that a copy anywhere would allocate. The values are made
// beforehand and given up by their source; timer and delivery run in virtual time on this
// thread.
long allocationsFor(int count) {
    auto manual = std::make_shared<ManualScheduler>();
    const rxcpp::observe_on_one_worker clock{rxcpp::schedulers::scheduler(manual)};
    std::vector<json> values(count, json(std::string(64, 'x')));
    std::optional<rxcpp::subscriber<json>> source;
    long received = 0;
    limitOnSilence(
        rxcpp::observable<>::create<json>(
            [&source](rxcpp::subscriber<json> s) { source.emplace(s); }),
        std::chrono::hours(1), [] {}, clock, clock)
        .subscribe([&received](const json&) { ++received; }, [](std::exception_ptr) {});
    manual->advanceBy(std::chrono::milliseconds(0));

    allocations = 0;
    counting = true;
    for (json& value : values)
        source->on_next(std::move(value));
    manual->advanceBy(std::chrono::milliseconds(0));
    counting = false;

    EXPECT_EQ(received, count);
    return allocations;
}

TEST(LimitOnSilenceAllocationTest, ValuesPassTheLimitAndTheDeliveryHopWithoutACopy) {
    const long few = allocationsFor(10);
    const long many = allocationsFor(1010);
    // Fewer than one allocation for each of the thousand values more: they are moved, and the
    // queues grow in steps.
    EXPECT_LT(many - few, 100);
}

} // namespace
} // namespace EditorService
