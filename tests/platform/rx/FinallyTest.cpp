#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

using EditorService::Testing::failureText;
using EditorService::Testing::Recorder;
using testing::ElementsAre;

TEST(FinallyTest, RunsOnceAfterTheCompletionHandlerReturned) {
    rxcpp::subjects::subject<int> source;
    Recorder r;
    source.get_observable()
        .finally([&] { r.add("finally"); })
        .subscribe([&](int v) { r.add("next " + std::to_string(v)); },
                   [&](std::exception_ptr) { r.add("error"); }, [&] { r.add("completed"); });
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_completed();
    source.get_subscriber().on_completed();
    EXPECT_THAT(r.lines(), ElementsAre("next 1", "completed", "finally"));
}

TEST(FinallyTest, RunsOnceAfterTheErrorHandlerReturned) {
    Recorder r;
    rxcpp::observable<>::error<int>(std::runtime_error("boom"))
        .finally([&] { r.add("finally"); })
        .subscribe([](int) {}, [&](std::exception_ptr e) { r.add(failureText(e)); });
    EXPECT_THAT(r.lines(), ElementsAre("boom", "finally"));
}

TEST(FinallyTest, RunsOnceOnUnsubscription) {
    rxcpp::subjects::subject<int> source;
    int calls = 0;
    rxcpp::composite_subscription cs;
    source.get_observable()
        .finally([&] { ++calls; })
        .subscribe(
            cs, [](int) {}, [](std::exception_ptr) {});
    EXPECT_EQ(calls, 0);
    cs.unsubscribe();
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(source.has_observers());
    cs.unsubscribe();
    source.get_subscriber().on_completed();
    EXPECT_EQ(calls, 1);
}

TEST(FinallyTest, RunsOnTheThreadThatEndedTheStream) {
    rxcpp::subjects::subject<int> source;
    std::thread::id ranOn;
    source.get_observable()
        .finally([&] { ranOn = std::this_thread::get_id(); })
        .subscribe([](int) {}, [](std::exception_ptr) {});
    std::thread ender([&] { source.get_subscriber().on_completed(); });
    const auto enderId = ender.get_id();
    ender.join();
    EXPECT_EQ(ranOn, enderId);
}

TEST(FinallyTest, KeepsWhatItCapturesAliveUntilTheEnd) {
    auto kept = std::make_shared<int>(1);
    std::weak_ptr<int> watch = kept;
    rxcpp::subjects::subject<int> source;
    source.get_observable().finally([kept] {}).subscribe([](int) {}, [](std::exception_ptr) {});
    kept.reset();
    EXPECT_FALSE(watch.expired());
    source.get_subscriber().on_completed();
    EXPECT_TRUE(watch.expired());
}
