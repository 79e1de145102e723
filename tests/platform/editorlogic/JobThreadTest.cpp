#include "platform/editorlogic/JobThread.h"
#include "tests/support/Releaser.h"

#include <QString>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <mutex>
#include <stdexcept>
#include <thread>

using EditorService::Testing::Releaser;
using Task::JobThread;

namespace {

constexpr auto generously = std::chrono::seconds(60);

// What happened, in order, with the thread it happened on.
struct Journal {
    std::mutex mutex;
    std::vector<std::string> events;
    std::vector<std::thread::id> threads;

    void add(const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
        threads.push_back(std::this_thread::get_id());
    }
    std::vector<std::string> snapshot() {
        std::lock_guard<std::mutex> lock(mutex);
        return events;
    }
};

} // namespace

TEST(JobThreadTest, RunsJobsInOrderBetweenOneBusyAndOneIdle) {
    Journal journal;
    std::promise<void> idle;
    std::promise<void> release;
    auto released = release.get_future().share();
    {
        JobThread jobs([&] { journal.add("busy"); },
                       [&] {
                           journal.add("idle");
                           idle.set_value();
                       });
        jobs.submit([&, released] {
            released.wait();
            journal.add("a");
        });
        jobs.submit([&] { journal.add("b"); });
        jobs.submit([&] { journal.add("c"); });
        release.set_value();
        ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
    }
    const std::vector<std::string> expected{"busy", "a", "b", "c", "idle"};
    EXPECT_EQ(journal.snapshot(), expected);
    for (const auto& thread : journal.threads)
        EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(JobThreadTest, EachRunAfterARestHasItsOwnBusyAndIdle) {
    Journal journal;
    std::promise<void> firstIdle;
    std::promise<void> secondIdle;
    int idles = 0;
    JobThread jobs([&] { journal.add("busy"); },
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

TEST(JobThreadTest, AJobThatThrowsEndsAlone) {
    Journal journal;
    std::promise<void> afterRan;
    // The thread may run dry between the two jobs, so it may be idle once or twice.
    JobThread jobs([] {}, [] {});
    jobs.submit([] { throw std::runtime_error("broken"); });
    jobs.submit([&] {
        journal.add("after");
        afterRan.set_value();
    });
    ASSERT_EQ(afterRan.get_future().wait_for(generously), std::future_status::ready);
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"after"});
}

TEST(JobThreadTest, DestructorWaitsForTheRunningJobAndDropsTheQueuedOnes) {
    Journal journal;
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    std::thread releaser;
    {
        JobThread jobs([&] { journal.add("busy"); }, [&] { journal.add("idle"); });
        jobs.submit([&, released] {
            started.set_value();
            released.wait();
            journal.add("running");
        });
        jobs.submit([&] { journal.add("queued"); });
        ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
        releaser = std::thread([&release] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            release.set_value();
        });
    }
    releaser.join();
    const std::vector<std::string> expected{"busy", "running"};
    EXPECT_EQ(journal.snapshot(), expected);
}

TEST(JobThreadTest, StartsNoThreadBeforeTheFirstJob) {
    bool called = false;
    {
        JobThread jobs([&] { called = true; }, [&] { called = true; });
    }
    EXPECT_FALSE(called);
}

TEST(JobThreadTest, QueuedJobsAreToldTheyWereDroppedInOrderOnceTheRunningJobEnded) {
    Journal journal;
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    {
        JobThread jobs([&] { journal.add("busy"); }, [&] { journal.add("idle"); });
        jobs.submit([&, released] {
            started.set_value();
            released.wait();
            journal.add("running");
        });
        jobs.submit([&] { journal.add("a"); }, [&] { journal.add("a dropped"); });
        jobs.submit([&] { journal.add("b"); });
        auto releaser = std::make_shared<Releaser>();
        releaser->release = [&release] { release.set_value(); };
        jobs.submit([&, releaser] { journal.add("c"); }, [&] { journal.add("c dropped"); });
        releaser.reset();
        ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    }
    const std::vector<std::string> expected{"busy", "running", "a dropped", "c dropped"};
    EXPECT_EQ(journal.snapshot(), expected);
    std::lock_guard<std::mutex> lock(journal.mutex);
    EXPECT_EQ(journal.threads[2], std::this_thread::get_id());
    EXPECT_EQ(journal.threads[3], std::this_thread::get_id());
}

TEST(JobThreadTest, AJobThatRanIsNeverToldItWasDropped) {
    Journal journal;
    std::promise<void> idle;
    {
        JobThread jobs([] {}, [&] { idle.set_value(); });
        jobs.submit([&] { journal.add("ran"); }, [&] { journal.add("dropped"); });
        ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
    }
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"ran"});
}

TEST(JobThreadTest, ADroppedThatThrowsEndsAlone) {
    Journal journal;
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    {
        JobThread jobs([] {}, [] {});
        jobs.submit([&, released] {
            started.set_value();
            released.wait();
        });
        jobs.submit([] {}, [] { throw std::runtime_error("broken"); });
        auto releaser = std::make_shared<Releaser>();
        releaser->release = [&release] { release.set_value(); };
        jobs.submit([releaser] {}, [&] { journal.add("told"); });
        releaser.reset();
        ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    }
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"told"});
}
