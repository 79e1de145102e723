#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

using EditorService::Testing::failureText;
using EditorService::Testing::Recorder;
using testing::ElementsAre;

TEST(SubscriberTest, CompletionEndsTheLifetimeAfterTheHandler) {
    Recorder r;
    rxcpp::composite_subscription cs;
    bool subscribedInHandler = false;
    auto s = rxcpp::make_subscriber<int>(
        cs, [](int) {}, [](std::exception_ptr) {},
        [&] { subscribedInHandler = cs.is_subscribed(); });
    s.on_completed();
    EXPECT_TRUE(subscribedInHandler);
    EXPECT_FALSE(s.is_subscribed());
}

TEST(SubscriberTest, NothingIsDeliveredAfterATerminalSignal) {
    Recorder r;
    auto s = r.subscriber<int>();
    s.on_next(1);
    s.on_error(std::make_exception_ptr(std::runtime_error("boom")));
    s.on_next(2);
    s.on_completed();
    s.on_error(std::make_exception_ptr(std::runtime_error("again")));
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_error(boom)"));
}

TEST(SubscriberTest, NothingIsDeliveredAfterUnsubscribe) {
    Recorder r;
    auto s = r.subscriber<int>();
    s.unsubscribe();
    s.on_next(1);
    s.on_completed();
    EXPECT_TRUE(r.lines().empty());
}

TEST(SubscriberTest, ThrowFromOnNextGoesToTheSameObserversOnErrorWithTheSameObject) {
    const auto thrown = std::make_exception_ptr(std::runtime_error("from on_next"));
    std::exception_ptr received;
    int nexts = 0;
    auto s = rxcpp::make_subscriber<int>(
        [&](int) {
            ++nexts;
            std::rethrow_exception(thrown);
        },
        [&](std::exception_ptr e) { received = e; });
    s.on_next(1);
    s.on_next(2);
    EXPECT_EQ(nexts, 1);
    EXPECT_EQ(received, thrown);
    EXPECT_FALSE(s.is_subscribed());
}

TEST(SubscriberTest, SecondFunctionTakingExceptionIsOnError) {
    Recorder r;
    auto s = rxcpp::make_subscriber<int>([](int) {},
                                         [&](std::exception_ptr e) { r.add(failureText(e)); });
    s.on_error(std::make_exception_ptr(std::runtime_error("boom")));
    EXPECT_THAT(r.lines(), ElementsAre("boom"));
}

TEST(SubscriberTest, SecondFunctionTakingNothingIsOnCompleted) {
    int completions = 0;
    auto s = rxcpp::make_subscriber<int>([](int) {}, [&] { ++completions; });
    s.on_completed();
    EXPECT_EQ(completions, 1);
}

TEST(SubscriberTest, AddedCallbackRunsWhenTheLifetimeEnds) {
    auto s = rxcpp::make_subscriber<int>([](int) {}, [](std::exception_ptr) {});
    int calls = 0;
    s.add([&] { ++calls; });
    s.on_completed();
    EXPECT_EQ(calls, 1);
}

TEST(SubscriberTest, CopiesShareTheLifetime) {
    auto s = rxcpp::make_subscriber<int>([](int) {}, [](std::exception_ptr) {});
    auto copy = s;
    copy.unsubscribe();
    EXPECT_FALSE(s.is_subscribed());
    EXPECT_FALSE(s.get_subscription().is_subscribed());
}

TEST(SubscriberTest, SubscriberWithoutOnErrorTerminatesOnError) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_DEATH(
        {
            auto s = rxcpp::make_subscriber<int>([](int) {});
            s.on_error(std::make_exception_ptr(std::runtime_error("boom")));
        },
        "");
}

TEST(SubscriberTest, SubscriberMadeFromACompositeHasThatComposite) {
    rxcpp::composite_subscription cs;
    auto withNext = rxcpp::make_subscriber<int>(cs, [](int) {});
    auto withError = rxcpp::make_subscriber<int>(
        cs, [](int) {}, [](std::exception_ptr) {});
    auto withCompleted = rxcpp::make_subscriber<int>(
        cs, [](int) {}, [] {});
    auto withAll = rxcpp::make_subscriber<int>(
        cs, [](int) {}, [](std::exception_ptr) {}, [] {});
    EXPECT_EQ(withNext.get_subscription(), cs);
    EXPECT_EQ(withError.get_subscription(), cs);
    EXPECT_EQ(withCompleted.get_subscription(), cs);
    EXPECT_EQ(withAll.get_subscription(), cs);
    EXPECT_EQ(rxcpp::make_subscriber<int>(withAll).get_subscription(), cs);
}

TEST(SubscriberTest, SubscribersMadeWithoutACompositeEachGetTheirOwn) {
    auto first = rxcpp::make_subscriber<int>([](int) {}, [](std::exception_ptr) {});
    auto second = rxcpp::make_subscriber<int>([](int) {}, [](std::exception_ptr) {});
    EXPECT_NE(first.get_subscription(), second.get_subscription());
    EXPECT_EQ(first.get_subscription(), decltype(first)(first).get_subscription());
}

TEST(SubscriberTest, AddGivesAHandleThatRemoveTakes) {
    auto s = rxcpp::make_subscriber<int>([](int) {}, [](std::exception_ptr) {});
    int removed = 0;
    int kept = 0;
    auto handle = s.add([&] { ++removed; });
    s.add([&] { ++kept; });
    s.remove(handle);
    s.unsubscribe();
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(kept, 1);
}
