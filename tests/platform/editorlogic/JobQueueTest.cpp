#include "platform/editorlogic/JobQueue.h"

#include "tests/support/Journal.h"
#include "tests/support/Releaser.h"

#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using EditorService::Testing::Journal;
using EditorService::Testing::Releaser;
using Task::JobQueue;

namespace {

constexpr auto generously = std::chrono::seconds(60);

} // namespace

TEST(JobQueueTest, GivesJobsInTheOrderTheyCameThenNothing) {
    JobQueue queue;
    std::vector<int> ran;
    queue.push([&] { ran.push_back(1); });
    queue.push([&] { ran.push_back(2); });
    while (auto job = queue.take())
        job();
    EXPECT_EQ(ran, (std::vector<int>{1, 2}));
    EXPECT_FALSE(queue.take());
}

TEST(JobQueueTest, ClosingReportsTheJobsNobodyTookInOrderAndNeverThoseTaken) {
    Journal journal;
    JobQueue queue;
    queue.push([&] { journal.add("a"); }, [&] { journal.add("a dropped"); });
    queue.push([&] { journal.add("b"); }, [&] { journal.add("b dropped"); });
    queue.push([&] { journal.add("c"); });
    queue.push([&] { journal.add("d"); }, [&] { journal.add("d dropped"); });
    queue.take()();
    queue.close();
    EXPECT_FALSE(queue.take());
    const std::vector<std::string> expected{"a", "b dropped", "d dropped"};
    EXPECT_EQ(journal.snapshot(), expected);
    EXPECT_EQ(journal.threadOf("b dropped"), std::this_thread::get_id());
}

TEST(JobQueueTest, AJobPushedAfterTheCloseIsDroppedAtOnceOnThePushingThread) {
    Journal journal;
    JobQueue queue;
    queue.close();
    EXPECT_FALSE(queue.push([&] { journal.add("ran"); }, [&] { journal.add("dropped"); }));
    EXPECT_FALSE(queue.take());
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"dropped"});
    EXPECT_EQ(journal.threadOf("dropped"), std::this_thread::get_id());
}

TEST(JobQueueTest, EachDroppedJobIsReportedOnceHoweverOftenTheQueueCloses) {
    Journal journal;
    {
        JobQueue queue;
        queue.push([] {}, [&] { journal.add("dropped"); });
        queue.close();
        queue.close();
    }
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"dropped"});
}

TEST(JobQueueTest, TheDestructorClosesAndReportsTheJobsNobodyTook) {
    Journal journal;
    {
        JobQueue queue;
        queue.push([&] { journal.add("ran"); }, [&] { journal.add("dropped"); });
    }
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"dropped"});
}

TEST(JobQueueTest, CloseLetsGoOfTheUntakenJobsThenWaitsForTheRunningOneBeforeReporting) {
    Journal journal;
    JobQueue queue;
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    queue.push([&, released] {
        started.set_value();
        released.wait();
        journal.add("running ended");
    });
    // The running job ends only when the close lets go of the queued one.
    auto releaser = std::make_shared<Releaser>();
    releaser->release = [&release] { release.set_value(); };
    queue.push([releaser] {}, [&] { journal.add("queued dropped"); });
    releaser.reset();
    std::thread worker([job = queue.take()] { job(); });
    ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    queue.close();
    const std::vector<std::string> expected{"running ended", "queued dropped"};
    EXPECT_EQ(journal.snapshot(), expected);
    EXPECT_EQ(journal.threadOf("queued dropped"), std::this_thread::get_id());
    worker.join();
}

TEST(JobQueueTest, ATakenJobRunsUntilEveryCopyOfItIsGone) {
    JobQueue queue;
    queue.push([] {});
    EXPECT_FALSE(queue.isEmpty());
    auto job = queue.take();
    auto copy = job;
    job();
    job = nullptr;
    EXPECT_FALSE(queue.isEmpty());
    copy = nullptr;
    EXPECT_TRUE(queue.isEmpty());
}

TEST(JobQueueTest, ATakenJobMayOutliveTheQueue) {
    std::function<void()> job;
    bool ran = false;
    {
        auto queue = std::make_unique<JobQueue>();
        queue->push([&] { ran = true; });
        job = queue->take();
        std::thread closer([&queue] { queue.reset(); });
        // The close waits for the job we hold; running it and letting go ends the wait.
        job();
        job = nullptr;
        closer.join();
    }
    EXPECT_TRUE(ran);
}

TEST(JobQueueTest, ADroppedThatThrowsEndsAlone) {
    Journal journal;
    JobQueue queue;
    queue.push([] {}, [] { throw std::runtime_error("broken"); });
    queue.push([] {}, [&] { journal.add("told"); });
    queue.close();
    queue.push([] {}, [] { throw std::runtime_error("broken after"); });
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"told"});
}

TEST(JobQueueTest, WaitAndTakeWaitsForAJobAndGivesNothingOnceClosed) {
    JobQueue queue;
    std::promise<std::function<void()>> taken;
    std::thread taker([&] { taken.set_value(queue.waitAndTake()); });
    auto future = taken.get_future();
    int ran = 0;
    queue.push([&] { ++ran; });
    ASSERT_EQ(future.wait_for(generously), std::future_status::ready);
    auto job = future.get();
    ASSERT_TRUE(job);
    job();
    taker.join();
    EXPECT_EQ(ran, 1);
    job = nullptr;

    std::thread late([&] { EXPECT_FALSE(queue.waitAndTake()); });
    queue.close();
    late.join();
}

TEST(JobQueueTest, PushSaysWhetherAWaitingTakerIsFreeForTheJob) {
    JobQueue queue;
    EXPECT_FALSE(queue.push([] {}));
    queue.take();
    std::thread taker([&] {
        while (auto job = queue.waitAndTake())
            job();
    });
    // The taker spends most of its time waiting; some push finds it there.
    while (!queue.push([] {}))
        std::this_thread::yield();
    queue.close();
    taker.join();
}

// Meant for ThreadSanitizer too: jobs come from several threads while others take them and
// the queue closes half-way. Every job ends exactly once, run or dropped.
TEST(JobQueueTest, EveryJobIsRunOrDroppedExactlyOnceWhateverTheThreadsDo) {
    constexpr int pushers = 3;
    constexpr int perPusher = 2000;
    std::vector<std::atomic<int>> ends(pushers * perPusher);
    std::atomic<int> ran{0};
    JobQueue queue;
    std::vector<std::thread> threads;
    for (int p = 0; p < pushers; ++p) {
        threads.emplace_back([&, p] {
            for (int i = 0; i < perPusher; ++i) {
                auto& end = ends[p * perPusher + i];
                queue.push([&end] { ++end; }, [&end] { ++end; });
            }
        });
    }
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&] {
            while (auto job = queue.waitAndTake()) {
                job();
                ++ran;
            }
        });
    }
    threads.emplace_back([&] {
        while (ran < perPusher)
            std::this_thread::yield();
        queue.close();
    });
    for (auto& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < ends.size(); ++i)
        ASSERT_EQ(ends[i].load(), 1) << "job " << i;
}
