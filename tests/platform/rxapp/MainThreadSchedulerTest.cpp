#include "platform/rxapp/MainThreadScheduler.h"

#include "tests/support/EventLoop.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

using EditorService::Testing::spinFor;
using EditorService::Testing::spinUntil;
using rxcpp::schedulers::schedulable;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MainThreadSchedulerTest : public testing::Test {
protected:
    rxcpp::schedulers::scheduler scheduler =
        rxcpp::schedulers::make_scheduler<Velmor::rx::MainThreadScheduler>();
    rxcpp::schedulers::worker worker = scheduler.create_worker();
    std::vector<std::string> order;

    static bool onMainThread() {
        return QThread::currentThread() == QCoreApplication::instance()->thread();
    }
};

} // namespace

TEST_F(MainThreadSchedulerTest, ActionScheduledOnTheMainThreadRunsOnALaterTurn) {
    worker.schedule([&](const schedulable&) { order.push_back("ran"); });
    EXPECT_THAT(order, IsEmpty());
    ASSERT_TRUE(spinUntil([&] { return !order.empty(); }));
    EXPECT_THAT(order, ElementsAre("ran"));
}

TEST_F(MainThreadSchedulerTest, ActionsRunInTheOrderQueued) {
    for (int i = 0; i < 100; ++i)
        worker.schedule([&, i](const schedulable&) { order.push_back(std::to_string(i)); });
    ASSERT_TRUE(spinUntil([&] { return order.size() == 100; }));
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(order[i], std::to_string(i));
}

TEST_F(MainThreadSchedulerTest, WorkersShareOneQueueInOrder) {
    auto other = scheduler.create_worker();
    worker.schedule([&](const schedulable&) { order.push_back("a"); });
    other.schedule([&](const schedulable&) { order.push_back("b"); });
    worker.schedule([&](const schedulable&) { order.push_back("c"); });
    ASSERT_TRUE(spinUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre("a", "b", "c"));
}

TEST_F(MainThreadSchedulerTest, ActionScheduledByAnActionWaitsForALaterTurn) {
    worker.schedule([&](const schedulable& self) {
        self.get_worker().schedule([&](const schedulable&) { order.push_back("inner"); });
        order.push_back("outer");
    });
    ASSERT_TRUE(spinUntil([&] { return order.size() == 2; }));
    EXPECT_THAT(order, ElementsAre("outer", "inner"));
}

TEST_F(MainThreadSchedulerTest, TimedActionsRunInTimeOrderOnTheMainThread) {
    bool allOnMain = true;
    const auto now = worker.now();
    auto record = [&](const char* name) {
        return [&, name](const schedulable&) {
            allOnMain = allOnMain && onMainThread();
            order.push_back(name);
        };
    };
    worker.schedule(now + milliseconds(40), record("40ms"));
    worker.schedule(now + milliseconds(10), record("10ms"));
    worker.schedule(now + milliseconds(10), record("10ms again"));
    worker.schedule(record("now"));
    ASSERT_TRUE(spinUntil([&] { return order.size() == 4; }));
    EXPECT_THAT(order, ElementsAre("now", "10ms", "10ms again", "40ms"));
    EXPECT_TRUE(allOnMain);
}

TEST_F(MainThreadSchedulerTest, TimedActionDoesNotRunBeforeItsTime) {
    std::chrono::steady_clock::time_point ranAt;
    const auto due = worker.now() + milliseconds(30);
    worker.schedule(due, [&](const schedulable&) { ranAt = std::chrono::steady_clock::now(); });
    ASSERT_TRUE(spinUntil([&] { return ranAt != std::chrono::steady_clock::time_point(); }));
    EXPECT_GE(ranAt, due);
}

TEST_F(MainThreadSchedulerTest, EarlierTimedActionFromAnotherThreadIsNotHeldUpByALaterOne) {
    const auto now = worker.now();
    worker.schedule(now + std::chrono::hours(1),
                    [&](const schedulable&) { order.push_back("hour"); });
    spinFor(milliseconds(5));
    std::thread other([&] {
        worker.schedule(worker.now() + milliseconds(5),
                        [&](const schedulable&) { order.push_back("soon"); });
    });
    other.join();
    ASSERT_TRUE(spinUntil([&] { return !order.empty(); }));
    EXPECT_THAT(order, ElementsAre("soon"));
    worker.unsubscribe();
}

TEST_F(MainThreadSchedulerTest, UnsubscribedWorkerDropsItsActions) {
    auto other = scheduler.create_worker();
    worker.schedule([&](const schedulable&) { order.push_back("dropped"); });
    other.schedule([&](const schedulable&) { order.push_back("kept"); });
    worker.unsubscribe();
    ASSERT_TRUE(spinUntil([&] { return !order.empty(); }));
    spinFor(milliseconds(10));
    EXPECT_THAT(order, ElementsAre("kept"));
}

TEST_F(MainThreadSchedulerTest, ActionsFromSeveralThreadsAllRunOnTheMainThreadInEachThreadsOrder) {
    constexpr int threads = 4;
    constexpr int perThread = 2000;
    std::map<int, std::vector<int>> received;
    std::atomic<int> count{0};
    bool allOnMain = true;
    std::vector<std::thread> producers;
    for (int t = 0; t < threads; ++t)
        producers.emplace_back([&, t] {
            auto own = scheduler.create_worker();
            for (int i = 0; i < perThread; ++i)
                own.schedule([&, t, i](const schedulable&) {
                    allOnMain = allOnMain && onMainThread();
                    received[t].push_back(i);
                    ++count;
                });
        });
    for (auto& p : producers)
        p.join();
    ASSERT_TRUE(spinUntil([&] { return count.load() == threads * perThread; }));
    EXPECT_TRUE(allOnMain);
    for (const auto& [t, values] : received) {
        ASSERT_EQ(values.size(), std::size_t(perThread));
        for (int i = 0; i < perThread; ++i)
            ASSERT_EQ(values[i], i);
    }
}

TEST_F(MainThreadSchedulerTest, ActionSpinningANestedEventLoopKeepsTheOrder) {
    worker.schedule([&](const schedulable& self) {
        order.push_back("outer start");
        self.get_worker().schedule([&](const schedulable&) { order.push_back("nested"); });
        spinUntil([&] { return order.size() >= 3; }, std::chrono::seconds(10));
        order.push_back("outer end");
    });
    worker.schedule([&](const schedulable&) { order.push_back("second"); });
    ASSERT_TRUE(spinUntil([&] { return order.size() == 4; }));
    EXPECT_THAT(order, ElementsAre("outer start", "second", "nested", "outer end"));
}
