#include <rxcpp/rx.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <set>
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

TEST(CompositeSubscriptionTest, CopiesAreEqualAndSeparateCompositesAreNot) {
    rxcpp::composite_subscription cs;
    const auto copy = cs;
    rxcpp::composite_subscription other;
    EXPECT_TRUE(cs == copy);
    EXPECT_FALSE(cs != copy);
    EXPECT_FALSE(cs == other);
    EXPECT_TRUE(cs != other);
}

TEST(CompositeSubscriptionTest, CompositesThatEndedAlikeStayUnequal) {
    rxcpp::composite_subscription cs;
    rxcpp::composite_subscription other;
    cs.unsubscribe();
    other.unsubscribe();
    EXPECT_NE(cs, other);
}

TEST(CompositeSubscriptionTest, CompositeEqualsItselfSeenAsASubscription) {
    rxcpp::composite_subscription cs;
    const rxcpp::subscription plain = cs;
    EXPECT_EQ(plain, cs);
    EXPECT_NE(plain, rxcpp::subscription());
}

TEST(CompositeSubscriptionTest, TwoEmptySubscriptionsAreNotEqual) {
    rxcpp::subscription first;
    rxcpp::subscription second;
    EXPECT_NE(first, second);
    EXPECT_EQ(first, rxcpp::subscription(first));
}

TEST(CompositeSubscriptionTest, OrderKeepsOneEntryPerSharedState) {
    rxcpp::composite_subscription a;
    rxcpp::composite_subscription b;
    std::set<rxcpp::composite_subscription> composites{a, b, a};
    EXPECT_EQ(composites.size(), 2u);
    EXPECT_TRUE(a < b || b < a);
    EXPECT_FALSE(a < a);
    std::set<rxcpp::subscription> subscriptions{a, b, rxcpp::subscription(a)};
    EXPECT_EQ(subscriptions.size(), 2u);
}

TEST(CompositeSubscriptionTest, AddGivesTheAddedSubscriptionsWeakHandle) {
    rxcpp::composite_subscription cs;
    auto child = rxcpp::make_subscription([] {});
    const auto handle = cs.add(child);
    const auto weak = child.get_weak();
    EXPECT_FALSE(handle.owner_before(weak) || weak.owner_before(handle));
}

TEST(CompositeSubscriptionTest, WeakHandleOfASubscriptionTakesItOutOfTheComposite) {
    rxcpp::composite_subscription cs;
    int calls = 0;
    auto child = rxcpp::make_subscription([&] { ++calls; });
    cs.add(child);
    cs.remove(child.get_weak());
    cs.unsubscribe();
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(child.is_subscribed());
}

TEST(CompositeSubscriptionTest, MadeSubscriptionRunsItsFunctionOnceAtItsFirstUnsubscribe) {
    int calls = 0;
    auto s = rxcpp::make_subscription([&] { ++calls; });
    EXPECT_TRUE(s.is_subscribed());
    s.unsubscribe();
    s.unsubscribe();
    EXPECT_FALSE(s.is_subscribed());
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(rxcpp::make_subscription().is_subscribed());
}
