#include "platform/editorlogic/JobPool.h"

#include "tests/support/Journal.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <gtest/gtest.h>
#include <mutex>
#include <stdexcept>
#include <thread>

using EditorService::Testing::Journal;
using Task::JobPool;

namespace {

constexpr auto generously = std::chrono::seconds(60);

} // namespace

TEST(JobPoolTest, JobsRunSideBySideBetweenOneBusyAndOneIdle) {
    Journal journal;
    std::promise<void> idle;
    std::promise<void> bothStarted;
    std::promise<void> release;
    auto released = release.get_future().share();
    std::mutex startLock;
    int started = 0;
    JobPool jobs([&] { journal.add("busy"); },
                 [&] {
                     journal.add("idle");
                     idle.set_value();
                 });
    // Each job waits until both run: with one thread at a time neither would end.
    for (const char* name : {"a", "b"}) {
        jobs.submit([&, name, released] {
            {
                std::lock_guard<std::mutex> lock(startLock);
                if (++started == 2)
                    bothStarted.set_value();
            }
            released.wait();
            journal.add(name);
        });
    }
    ASSERT_EQ(bothStarted.get_future().wait_for(generously), std::future_status::ready);
    release.set_value();
    ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
    const auto events = journal.snapshot();
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events.front(), "busy");
    EXPECT_EQ(events.back(), "idle");
    EXPECT_EQ(jobs.threadCount(), 2);
}

TEST(JobPoolTest, JobsOneAfterAnotherNeedNoMoreThreadsThanRunAtOnce) {
    std::promise<void> firstIdle;
    bool first = true;
    std::promise<void> secondIdle;
    JobPool jobs([] {},
                 [&] {
                     (first ? firstIdle : secondIdle).set_value();
                     first = false;
                 });
    jobs.submit([] {});
    ASSERT_EQ(firstIdle.get_future().wait_for(generously), std::future_status::ready);
    // The one thread may be about to wait again; it or at most one new thread takes the job.
    jobs.submit([] {});
    ASSERT_EQ(secondIdle.get_future().wait_for(generously), std::future_status::ready);
    EXPECT_LE(jobs.threadCount(), 2);
}

TEST(JobPoolTest, EachRunAfterARestHasItsOwnBusyAndIdle) {
    Journal journal;
    std::promise<void> firstIdle;
    std::promise<void> secondIdle;
    int idles = 0;
    JobPool jobs([&] { journal.add("busy"); },
                 [&] {
                     journal.add("idle");
                     (++idles == 1 ? firstIdle : secondIdle).set_value();
                 });
    jobs.submit([&] { journal.add("a"); });
    ASSERT_EQ(firstIdle.get_future().wait_for(generously), std::future_status::ready);
    jobs.submit([&] { journal.add("b"); });
    ASSERT_EQ(secondIdle.get_future().wait_for(generously), std::future_status::ready);
    const std::vector<std::string> expected{"busy", "a", "idle", "busy", "b", "idle"};
    EXPECT_EQ(journal.snapshot(), expected);
}

TEST(JobPoolTest, AJobThatThrowsEndsAlone) {
    std::promise<void> idle;
    std::promise<void> afterwards;
    bool first = true;
    JobPool jobs([] {},
                 [&] {
                     if (first)
                         idle.set_value();
                     first = false;
                 });
    jobs.submit([] { throw std::runtime_error("broken job"); });
    ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
    jobs.submit([&] { afterwards.set_value(); });
    EXPECT_EQ(afterwards.get_future().wait_for(generously), std::future_status::ready);
}

TEST(JobPoolTest, TheDestructorWaitsForTheRunningJob) {
    std::promise<void> started;
    std::atomic<bool> ended{false};
    {
        JobPool jobs([] {}, [] {});
        jobs.submit([&] {
            started.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            ended = true;
        });
        ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    }
    EXPECT_TRUE(ended);
}

TEST(JobPoolTest, BusyAndIdleAlternateHoweverJobsComeAndGo) {
    Journal journal;
    std::mutex mutex;
    std::condition_variable changed;
    int ended = 0;
    JobPool jobs([&] { journal.add("busy"); }, [&] { journal.add("idle"); });
    constexpr int count = 300;
    for (int i = 0; i < count; ++i) {
        jobs.submit([&] {
            std::lock_guard<std::mutex> lock(mutex);
            ++ended;
            changed.notify_all();
        });
    }
    {
        std::unique_lock<std::mutex> lock(mutex);
        ASSERT_TRUE(changed.wait_for(lock, generously, [&] { return ended == count; }));
    }
    // The last idle may still be on its way.
    for (int attempt = 0; attempt < 6000; ++attempt) {
        const auto events = journal.snapshot();
        if (!events.empty() && events.back() == "idle")
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const auto events = journal.snapshot();
    ASSERT_FALSE(events.empty());
    for (std::size_t i = 0; i < events.size(); ++i)
        EXPECT_EQ(events[i], i % 2 == 0 ? "busy" : "idle") << "event " << i;
    EXPECT_EQ(events.back(), "idle");
}
