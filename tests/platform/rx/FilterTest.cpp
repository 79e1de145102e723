#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using EditorService::Testing::Recorder;
using testing::ElementsAre;

namespace {

rxcpp::observable<int> oneToFive() {
    return rxcpp::observable<>::create<int>([](rxcpp::subscriber<int> s) {
        for (int i = 1; i <= 5; ++i)
            s.on_next(i);
        s.on_completed();
    });
}

} // namespace

TEST(FilterTest, PassesOnlyValuesThatMatch) {
    Recorder r;
    oneToFive().filter([](int v) { return v % 2 == 1; }).subscribe(r.subscriber<int>());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_next(3)", "on_next(5)", "on_completed"));
}

TEST(FilterTest, ThrowFromThePredicateEndsTheStreamWithTheSameObject) {
    const auto thrown = std::make_exception_ptr(std::runtime_error("predicate"));
    std::exception_ptr received;
    int seen = 0;
    bool sourceStillSubscribed = true;
    rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int> s) {
        s.on_next(1);
        s.on_next(2);
        sourceStillSubscribed = s.is_subscribed();
        s.on_next(3);
    })
        .filter([&](int v) {
            if (v == 2)
                std::rethrow_exception(thrown);
            return true;
        })
        .subscribe([&](int) { ++seen; }, [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(seen, 1);
    EXPECT_EQ(received, thrown);
    EXPECT_FALSE(sourceStillSubscribed);
}

TEST(FilterTest, RunsOnTheThreadThatDeliversTheValue) {
    std::thread::id predicateThread;
    oneToFive()
        .filter([&](int) {
            predicateThread = std::this_thread::get_id();
            return true;
        })
        .subscribe([](int) {}, [](std::exception_ptr) {});
    EXPECT_EQ(predicateThread, std::this_thread::get_id());
}
