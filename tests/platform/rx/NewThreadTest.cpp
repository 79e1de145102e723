#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using EditorService::Testing::Recorder;
using rxcpp::schedulers::schedulable;
using testing::ElementsAre;

namespace {

struct ThreadEndSentinel {
    std::atomic<bool>* ended = nullptr;
    ~ThreadEndSentinel() {
        if (ended)
            ended->store(true);
    }
};

} // namespace

TEST(NewThreadTest, EachWorkerRunsOnAThreadOfItsOwn) {
    auto scheduler = rxcpp::schedulers::make_new_thread();
    auto first = scheduler.create_worker();
    auto second = scheduler.create_worker();
    Recorder r;
    std::thread::id a, b;
    first.schedule([&](const schedulable&) {
        a = std::this_thread::get_id();
        r.add("a");
    });
    second.schedule([&](const schedulable&) {
        b = std::this_thread::get_id();
        r.add("b");
    });
    ASSERT_TRUE(r.waitForLines(2));
    EXPECT_NE(a, b);
    EXPECT_NE(a, std::this_thread::get_id());
    first.unsubscribe();
    second.unsubscribe();
}

TEST(NewThreadTest, RunsActionsInTimeOrderAndInQueueOrderForEqualTimes) {
    auto worker = rxcpp::schedulers::make_new_thread().create_worker();
    Recorder r;
    std::atomic<bool> release{false};
    // Hold the thread so that everything below is queued before anything runs.
    worker.schedule([&](const schedulable&) {
        while (!release)
            std::this_thread::yield();
    });
    const auto base = worker.now() + std::chrono::milliseconds(20);
    worker.schedule(base + std::chrono::milliseconds(10),
                    [&](const schedulable&) { r.add("late"); });
    worker.schedule(base, [&](const schedulable&) { r.add("first"); });
    worker.schedule(base, [&](const schedulable&) { r.add("second"); });
    worker.schedule(base, [&](const schedulable&) { r.add("third"); });
    worker.schedule([&](const schedulable&) { r.add("now"); });
    release = true;
    ASSERT_TRUE(r.waitForLines(5));
    EXPECT_THAT(r.lines(), ElementsAre("now", "first", "second", "third", "late"));
    worker.unsubscribe();
}

TEST(NewThreadTest, ThreadEndsWithTheWorkersLifetime) {
    auto worker = rxcpp::schedulers::make_new_thread().create_worker();
    std::atomic<bool> ended{false};
    Recorder r;
    worker.schedule([&](const schedulable&) {
        thread_local ThreadEndSentinel sentinel;
        sentinel.ended = &ended;
        r.add("ran");
    });
    ASSERT_TRUE(r.waitForLines(1));
    EXPECT_FALSE(ended.load());
    worker.unsubscribe();
    EXPECT_TRUE(ended.load());
}

TEST(NewThreadTest, UnsubscribingFromAnotherThreadWaitsForTheActionInFlight) {
    auto worker = rxcpp::schedulers::make_new_thread().create_worker();
    std::atomic<bool> started{false};
    std::atomic<bool> finished{false};
    worker.schedule([&](const schedulable&) {
        started = true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        finished = true;
    });
    while (!started)
        std::this_thread::yield();
    worker.unsubscribe();
    EXPECT_TRUE(finished.load());
}

TEST(NewThreadTest, ActionsStillQueuedAtUnsubscribeNeverRun) {
    auto worker = rxcpp::schedulers::make_new_thread().create_worker();
    std::atomic<bool> ran{false};
    worker.schedule(worker.now() + std::chrono::hours(1), [&](const schedulable&) { ran = true; });
    worker.unsubscribe();
    worker.schedule([&](const schedulable&) { ran = true; });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(ran.load());
}

TEST(NewThreadTest, ActionCanRescheduleItself) {
    auto worker = rxcpp::schedulers::make_new_thread().create_worker();
    Recorder r;
    int count = 0;
    worker.schedule([&](const schedulable& self) {
        r.add(std::to_string(++count));
        if (count < 3)
            self.schedule(self.now() + std::chrono::milliseconds(1));
    });
    ASSERT_TRUE(r.waitForLines(3));
    EXPECT_THAT(r.lines(), ElementsAre("1", "2", "3"));
    worker.unsubscribe();
}

TEST(NewThreadTest, ActionMayEndItsOwnWorker) {
    auto worker = rxcpp::schedulers::make_new_thread().create_worker();
    Recorder r;
    worker.schedule([&](const schedulable& self) {
        self.get_worker().schedule([&](const schedulable&) { r.add("after"); });
        self.get_worker().unsubscribe();
        r.add("ended");
    });
    ASSERT_TRUE(r.waitForLines(1));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_THAT(r.lines(), ElementsAre("ended"));
    EXPECT_FALSE(worker.is_subscribed());
}
