#include "media/CallbackStream.h"

#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::callbackStream;
using EditorService::Testing::collect;
using EditorService::Testing::FailedWith;

namespace {

using Done = std::function<void(const int&, std::exception_ptr)>;
using Wanted = std::function<bool()>;

// A controller that keeps what it was handed until the test calls back.
struct HeldCallback {
    Done done;
    Wanted wanted;
};

rxcpp::observable<nlohmann::json> streamOf(HeldCallback& held) {
    return callbackStream<int>(
        [&held](Done done, Wanted wanted) {
            held.done = std::move(done);
            held.wanted = std::move(wanted);
        },
        [](const int& result) {
            return nlohmann::json{{"result", result}};
        });
}

} // namespace

TEST(CallbackStreamTest, TheResultIsTheOneValueThenTheStreamCompletes) {
    HeldCallback held;
    const auto collected = collect(streamOf(held));
    ASSERT_TRUE(held.done);
    EXPECT_FALSE(collected->ended());
    held.done(7, nullptr);
    ASSERT_EQ(collected->values.size(), 1u);
    EXPECT_EQ(collected->values[0], (nlohmann::json{{"result", 7}}));
    EXPECT_TRUE(collected->completed);
}

TEST(CallbackStreamTest, AFailureEndsTheStreamWithoutAValue) {
    HeldCallback held;
    const auto collected = collect(streamOf(held));
    held.done(0, std::make_exception_ptr(std::runtime_error("Can not read")));
    EXPECT_TRUE(collected->values.empty());
    EXPECT_THAT(collected->error, FailedWith<std::runtime_error>("Can not read"));
}

TEST(CallbackStreamTest, WhatTheStartThrowsFailsTheStreamOnTheSubscribingThread) {
    const auto collected =
        collect(callbackStream<int>([](Done, Wanted) { throw std::logic_error("No controller"); },
                                    [](const int&) { return nlohmann::json(); }));
    EXPECT_THAT(collected->error, FailedWith<std::logic_error>("No controller"));
}

TEST(CallbackStreamTest, TheWorkIsWantedWhileTheSubscriberStays) {
    HeldCallback held;
    rxcpp::composite_subscription lifetime;
    streamOf(held).subscribe(lifetime, [](const nlohmann::json&) {});
    ASSERT_TRUE(held.wanted);
    EXPECT_TRUE(held.wanted());
    lifetime.unsubscribe();
    EXPECT_FALSE(held.wanted());
}
