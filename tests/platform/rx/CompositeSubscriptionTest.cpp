#include <rxcpp/rx.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

TEST(CompositeSubscriptionTest, NewCompositeIsSubscribed) {
    rxcpp::composite_subscription cs;
    EXPECT_TRUE(cs.is_subscribed());
}

TEST(CompositeSubscriptionTest, EmptySubscriptionIsAlreadyUnsubscribed) {
    rxcpp::subscription s;
    EXPECT_FALSE(s.is_subscribed());
}

TEST(CompositeSubscriptionTest, UnsubscribeRunsEachCallbackOnce) {
    rxcpp::composite_subscription cs;
    int first = 0;
    int second = 0;
    cs.add([&] { ++first; });
    cs.add([&] { ++second; });
    cs.unsubscribe();
    cs.unsubscribe();
    EXPECT_FALSE(cs.is_subscribed());
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
}

TEST(CompositeSubscriptionTest, CallbackAddedAfterUnsubscribeRunsAtOnce) {
    rxcpp::composite_subscription cs;
    cs.unsubscribe();
    int calls = 0;
    cs.add([&] { ++calls; });
    EXPECT_EQ(calls, 1);
}

TEST(CompositeSubscriptionTest, ChildCompositeEndsWithItsParent) {
    rxcpp::composite_subscription parent;
    rxcpp::composite_subscription child;
    parent.add(child);
    parent.unsubscribe();
    EXPECT_FALSE(child.is_subscribed());
}

TEST(CompositeSubscriptionTest, ChildEndingAloneLeavesItsParentSubscribed) {
    rxcpp::composite_subscription parent;
    rxcpp::composite_subscription child;
    parent.add(child);
    child.unsubscribe();
    EXPECT_TRUE(parent.is_subscribed());
}

TEST(CompositeSubscriptionTest, RemovedCallbackDoesNotRun) {
    rxcpp::composite_subscription cs;
    int calls = 0;
    auto token = cs.add([&] { ++calls; });
    cs.remove(token);
    cs.unsubscribe();
    EXPECT_EQ(calls, 0);
}

TEST(CompositeSubscriptionTest, ClearEndsChildrenButKeepsTheComposite) {
    rxcpp::composite_subscription cs;
    int calls = 0;
    cs.add([&] { ++calls; });
    cs.clear();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(cs.is_subscribed());
    cs.unsubscribe();
    EXPECT_EQ(calls, 1);
}

TEST(CompositeSubscriptionTest, CopiesShareOneLifetime) {
    rxcpp::composite_subscription cs;
    auto copy = cs;
    copy.unsubscribe();
    EXPECT_FALSE(cs.is_subscribed());
}

TEST(CompositeSubscriptionTest, ManyChildrenComingAndGoingAreAllReleased) {
    rxcpp::composite_subscription parent;
    auto alive = std::make_shared<int>(0);
    std::weak_ptr<int> watch = alive;
    for (int i = 0; i < 100000; ++i) {
        rxcpp::composite_subscription child;
        auto token = parent.add(child);
        child.add([parent, token, alive] { parent.remove(token); });
        child.unsubscribe();
    }
    alive.reset();
    EXPECT_TRUE(watch.expired());
    EXPECT_TRUE(parent.is_subscribed());
}

TEST(CompositeSubscriptionTest, ConcurrentUnsubscribeRunsCallbackOnce) {
    for (int round = 0; round < 50; ++round) {
        rxcpp::composite_subscription cs;
        std::atomic<int> calls{0};
        cs.add([&] { ++calls; });
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([cs] { cs.unsubscribe(); });
        for (auto& t : threads)
            t.join();
        EXPECT_EQ(calls.load(), 1);
    }
}

TEST(CompositeSubscriptionTest, ConcurrentAddAndUnsubscribeRunEveryCallbackOnce) {
    for (int round = 0; round < 20; ++round) {
        rxcpp::composite_subscription cs;
        std::atomic<int> calls{0};
        std::vector<std::thread> threads;
        for (int t = 0; t < 3; ++t)
            threads.emplace_back([cs, &calls] {
                for (int i = 0; i < 200; ++i)
                    cs.add([&calls] { ++calls; });
            });
        threads.emplace_back([cs] { cs.unsubscribe(); });
        for (auto& t : threads)
            t.join();
        EXPECT_EQ(calls.load(), 600);
    }
}

namespace {

// Adds `count` children to `parent` that end by themselves at once, and tells how many of them
// the parent has let go of by then.
long letGoOfShortLivedChildren(const rxcpp::composite_subscription& parent, int count) {
    std::vector<std::weak_ptr<rxcpp::detail::subscription_state>> children;
    for (int i = 0; i < count; ++i) {
        rxcpp::composite_subscription child;
        parent.add(child);
        child.unsubscribe();
        children.push_back(child.get_state());
    }
    return std::count_if(children.begin(), children.end(),
                         [](const auto& c) { return c.expired(); });
}

} // namespace

TEST(CompositeSubscriptionTest, ChildrenThatEndedAreLetGoAsTheParentGrows) {
    rxcpp::composite_subscription parent;
    EXPECT_GT(letGoOfShortLivedChildren(parent, 1000), 900);
    EXPECT_TRUE(parent.is_subscribed());
}

TEST(CompositeSubscriptionTest, ShortLivedChildrenBesideALongLivedOneAreLetGo) {
    rxcpp::composite_subscription parent;
    int longLivedEnds = 0;
    parent.add([&] { ++longLivedEnds; });
    EXPECT_GT(letGoOfShortLivedChildren(parent, 1000), 900);
    EXPECT_EQ(longLivedEnds, 0);
    parent.unsubscribe();
    EXPECT_EQ(longLivedEnds, 1);
}

TEST(CompositeSubscriptionTest, RemovingTheFirstChildKeepsTheOthers) {
    rxcpp::composite_subscription cs;
    std::vector<int> ended;
    auto first = cs.add([&] { ended.push_back(1); });
    cs.add([&] { ended.push_back(2); });
    cs.add([&] { ended.push_back(3); });
    cs.remove(first);
    cs.add([&] { ended.push_back(4); });
    cs.unsubscribe();
    std::sort(ended.begin(), ended.end());
    EXPECT_EQ(ended, (std::vector<int>{2, 3, 4}));
}
