#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using EditorService::Testing::Recorder;
using testing::ElementsAre;

TEST(MapTest, TransformsEachValueAndMayChangeItsType) {
    Recorder r;
    rxcpp::observable<std::string> mapped = rxcpp::observable<>::create<int>([](auto s) {
                                                s.on_next(1);
                                                s.on_next(2);
                                                s.on_completed();
                                            }).map([](int v) { return std::string(v, 'x'); });
    mapped.subscribe(r.subscriber<std::string>());
    EXPECT_THAT(r.lines(), ElementsAre("on_next(x)", "on_next(xx)", "on_completed"));
}

TEST(MapTest, ThrowFromTheSelectorEndsTheStreamWithTheSameObject) {
    const auto thrown = std::make_exception_ptr(std::runtime_error("selector"));
    std::exception_ptr received;
    bool sourceStillSubscribed = true;
    int completions = 0;
    rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int> s) {
        s.on_next(1);
        sourceStillSubscribed = s.is_subscribed();
        s.on_completed();
    }).map([&](int) -> int {
          std::rethrow_exception(thrown);
      }).subscribe([](int) {}, [&](std::exception_ptr e) { received = e; }, [&] { ++completions; });
    EXPECT_EQ(received, thrown);
    EXPECT_FALSE(sourceStillSubscribed);
    EXPECT_EQ(completions, 0);
}

TEST(MapTest, ThrowFromTheSubscribersOnNextReachesItsOwnOnErrorOnly) {
    const auto thrown = std::make_exception_ptr(std::runtime_error("observer"));
    std::exception_ptr received;
    int errors = 0;
    rxcpp::observable<>::just(1)
        .map([](int v) { return v + 1; })
        .subscribe([&](int) { std::rethrow_exception(thrown); },
                   [&](std::exception_ptr e) {
                       ++errors;
                       received = e;
                   });
    EXPECT_EQ(errors, 1);
    EXPECT_EQ(received, thrown);
}

TEST(MapTest, PassesErrorsOnUnchanged) {
    const auto ep = std::make_exception_ptr(std::runtime_error("source"));
    std::exception_ptr received;
    rxcpp::observable<>::error<int>(ep)
        .map([](int v) { return v; })
        .subscribe([](int) {}, [&](std::exception_ptr e) { received = e; });
    EXPECT_EQ(received, ep);
}
