#include "platform/editorlogic/Workers.h"

#include "tests/support/Journal.h"
#include "tests/support/Releaser.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

using EditorService::Testing::Journal;
using EditorService::Testing::Releaser;
using Task::Workers;

namespace {

constexpr auto generously = std::chrono::seconds(60);

// A job that waits until the test lets it end.
struct Hold {
    std::promise<void> started;
    std::promise<void> release;
    std::shared_future<void> released = release.get_future().share();

    std::function<void()> job(Journal& journal, const std::string& name) {
        return [this, &journal, name, released = released] {
            started.set_value();
            released.wait();
            journal.add(name);
        };
    }
    bool waitUntilStarted() {
        return started.get_future().wait_for(generously) == std::future_status::ready;
    }
    // Lets the held job end once the last copy of the returned job is gone, run or dropped.
    std::function<void()> releasedWhenLetGo(std::function<void()> job) {
        auto releaser = std::make_shared<Releaser>();
        releaser->release = [this] { release.set_value(); };
        return [releaser, job = std::move(job)] { job(); };
    }
};

// Whether busy and idle alternate from busy; with `endsIdle`, whether idle came last.
void expectAlternatingBusyAndIdle(const std::vector<std::string>& events, bool endsIdle) {
    std::vector<std::string> signals;
    std::copy_if(events.begin(), events.end(), std::back_inserter(signals),
                 [](const std::string& event) { return event == "busy" || event == "idle"; });
    ASSERT_FALSE(signals.empty());
    for (std::size_t i = 0; i < signals.size(); ++i)
        EXPECT_EQ(signals[i], i % 2 == 0 ? "busy" : "idle") << "signal " << i;
    if (endsIdle)
        EXPECT_EQ(signals.back(), "idle");
}

// Until the journal's last signal is idle: the last idle may still be on its way when the
// last job's end has been seen.
bool waitForIdle(Journal& journal) {
    const auto deadline = std::chrono::steady_clock::now() + generously;
    while (std::chrono::steady_clock::now() < deadline) {
        const auto events = journal.snapshot();
        if (!events.empty() && events.back() == "idle")
            return true;
        std::this_thread::yield();
    }
    return false;
}

class WorkersTest : public testing::TestWithParam<int> {};

std::string threadsName(const testing::TestParamInfo<int>& info) {
    return info.param == 0 ? "AsManyAsJobs" : "AtMost" + std::to_string(info.param);
}

} // namespace

TEST(SerialWorkersTest, RunJobsInOrderOnAThreadOfTheirOwnBetweenOneBusyAndOneIdle) {
    Journal journal;
    std::promise<void> idle;
    Hold hold;
    {
        Workers jobs(
            1, [&] { journal.add("busy"); },
            [&] {
                journal.add("idle");
                idle.set_value();
            });
        jobs.submit(hold.job(journal, "a"));
        jobs.submit([&] { journal.add("b"); });
        jobs.submit([&] { journal.add("c"); });
        hold.release.set_value();
        ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
        EXPECT_EQ(jobs.threadCount(), 1);
    }
    const std::vector<std::string> expected{"busy", "a", "b", "c", "idle"};
    EXPECT_EQ(journal.snapshot(), expected);
    for (const auto& thread : journal.threads)
        EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(SerialWorkersTest, StartNoThreadBeforeTheFirstJobAndSignalNothingWithoutOne) {
    bool called = false;
    {
        Workers jobs(
            1, [&] { called = true; }, [&] { called = true; });
        EXPECT_EQ(jobs.threadCount(), 0);
    }
    EXPECT_FALSE(called);
}

TEST(SerialWorkersTest, TheCloseWaitsForTheRunningJobThenReportsTheQueuedOnesInOrder) {
    Journal journal;
    Hold hold;
    {
        Workers jobs(
            1, [&] { journal.add("busy"); }, [&] { journal.add("idle"); });
        jobs.submit(hold.job(journal, "running"));
        jobs.submit([&] { journal.add("a"); }, [&] { journal.add("a dropped"); });
        jobs.submit([&] { journal.add("b"); });
        jobs.submit(hold.releasedWhenLetGo([&] { journal.add("c"); }),
                    [&] { journal.add("c dropped"); });
        ASSERT_TRUE(hold.waitUntilStarted());
    }
    const std::vector<std::string> expected{"busy", "running", "a dropped", "c dropped"};
    EXPECT_EQ(journal.snapshot(), expected);
    EXPECT_EQ(journal.threadOf("a dropped"), std::this_thread::get_id());
    EXPECT_EQ(journal.threadOf("c dropped"), std::this_thread::get_id());
}

TEST(SerialWorkersTest, AJobThatRanIsNeverToldItWasDropped) {
    Journal journal;
    std::promise<void> idle;
    {
        Workers jobs(
            1, [] {}, [&] { idle.set_value(); });
        jobs.submit([&] { journal.add("ran"); }, [&] { journal.add("dropped"); });
        ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
    }
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"ran"});
}

TEST(SerialWorkersTest, ADroppedThatThrowsEndsAlone) {
    Journal journal;
    Hold hold;
    {
        Workers jobs(
            1, [] {}, [] {});
        jobs.submit(hold.job(journal, "running"));
        jobs.submit([] {}, [] { throw std::runtime_error("broken"); });
        jobs.submit(hold.releasedWhenLetGo([] {}), [&] { journal.add("told"); });
        ASSERT_TRUE(hold.waitUntilStarted());
    }
    const std::vector<std::string> expected{"running", "told"};
    EXPECT_EQ(journal.snapshot(), expected);
}

TEST(SerialWorkersTest, BusyAndIdleMaySubmitJobs) {
    Journal journal;
    std::promise<void> idle;
    bool first = true;
    Workers* self = nullptr;
    Workers jobs(
        1,
        [&] {
            journal.add("busy");
            if (first)
                self->submit([&] { journal.add("from busy"); });
            first = false;
        },
        [&] {
            journal.add("idle");
            idle.set_value();
        });
    self = &jobs;
    jobs.submit([&] { journal.add("a"); });
    ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
    const std::vector<std::string> expected{"busy", "a", "from busy", "idle"};
    EXPECT_EQ(journal.snapshot(), expected);
}

TEST(ConcurrentWorkersTest, RunJobsSideBySideBetweenOneBusyAndOneIdle) {
    Journal journal;
    std::promise<void> idle;
    std::promise<void> bothStarted;
    std::promise<void> release;
    auto released = release.get_future().share();
    std::mutex startLock;
    int started = 0;
    Workers jobs(
        0, [&] { journal.add("busy"); },
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

TEST(ConcurrentWorkersTest, JobsOneAfterAnotherNeedNoMoreThreadsThanRunAtOnce) {
    std::promise<void> firstIdle;
    std::promise<void> secondIdle;
    int idles = 0;
    Workers jobs(
        0, [] {}, [&] { (++idles == 1 ? firstIdle : secondIdle).set_value(); });
    jobs.submit([] {});
    ASSERT_EQ(firstIdle.get_future().wait_for(generously), std::future_status::ready);
    // The one thread may be about to wait again; it or at most one new thread takes the job.
    jobs.submit([] {});
    ASSERT_EQ(secondIdle.get_future().wait_for(generously), std::future_status::ready);
    EXPECT_LE(jobs.threadCount(), 2);
}

TEST(ConcurrentWorkersTest, AJobSubmittedWhileEveryThreadIsBusyStartsAtOnce) {
    Journal journal;
    Hold hold;
    std::promise<void> secondRan;
    Workers jobs(
        0, [] {}, [] {});
    jobs.submit(hold.job(journal, "held"));
    ASSERT_TRUE(hold.waitUntilStarted());
    jobs.submit([&] { secondRan.set_value(); });
    EXPECT_EQ(secondRan.get_future().wait_for(generously), std::future_status::ready);
    hold.release.set_value();
}

TEST(LimitedWorkersTest, NeverRunMoreThanTheirThreadsAtOnce) {
    std::mutex mutex;
    std::condition_variable changed;
    int running = 0;
    int mostRunning = 0;
    int ended = 0;
    constexpr int count = 40;
    {
        Workers jobs(
            2, [] {}, [] {});
        for (int i = 0; i < count; ++i) {
            jobs.submit([&] {
                std::unique_lock<std::mutex> lock(mutex);
                mostRunning = std::max(mostRunning, ++running);
                // Gives a second job the chance to overlap, bounded so nothing waits for long.
                changed.wait_for(lock, std::chrono::milliseconds(1), [&] { return running > 1; });
                --running;
                ++ended;
                changed.notify_all();
            });
        }
        std::unique_lock<std::mutex> lock(mutex);
        ASSERT_TRUE(changed.wait_for(lock, generously, [&] { return ended == count; }));
        EXPECT_EQ(jobs.threadCount(), 2);
    }
    EXPECT_LE(mostRunning, 2);
}

TEST_P(WorkersTest, EachRunAfterARestHasItsOwnBusyAndIdle) {
    Journal journal;
    std::promise<void> firstIdle;
    std::promise<void> secondIdle;
    int idles = 0;
    Workers jobs(
        GetParam(), [&] { journal.add("busy"); },
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

TEST_P(WorkersTest, AJobThatThrowsEndsAlone) {
    std::promise<void> afterRan;
    Workers jobs(
        GetParam(), [] {}, [] {});
    jobs.submit([] { throw std::runtime_error("broken"); });
    jobs.submit([&] { afterRan.set_value(); });
    EXPECT_EQ(afterRan.get_future().wait_for(generously), std::future_status::ready);
}

TEST_P(WorkersTest, TheCloseWaitsForTheRunningJobAndSignalsNothingMore) {
    Journal journal;
    Hold hold;
    std::thread releaser;
    {
        Workers jobs(
            GetParam(), [&] { journal.add("busy"); }, [&] { journal.add("idle"); });
        jobs.submit(hold.job(journal, "running"));
        ASSERT_TRUE(hold.waitUntilStarted());
        // Released only once the close is under way.
        releaser = std::thread([&hold] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            hold.release.set_value();
        });
    }
    releaser.join();
    const std::vector<std::string> expected{"busy", "running"};
    EXPECT_EQ(journal.snapshot(), expected);
}

// Meant for ThreadSanitizer too: jobs come from several threads, end at random and the workers
// close half-way; busy and idle still alternate, and every job is run or dropped once.
TEST_P(WorkersTest, BusyAndIdleAlternateAndEveryJobEndsOnceHoweverJobsComeAndGo) {
    constexpr int submitters = 3;
    constexpr int perSubmitter = 300;
    Journal journal;
    std::vector<std::atomic<int>> ends(submitters * perSubmitter);
    std::atomic<int> ran{0};
    {
        Workers jobs(
            GetParam(), [&] { journal.add("busy"); }, [&] { journal.add("idle"); });
        std::vector<std::thread> threads;
        for (int s = 0; s < submitters; ++s) {
            threads.emplace_back([&, s] {
                for (int i = 0; i < perSubmitter; ++i) {
                    auto& end = ends[s * perSubmitter + i];
                    jobs.submit(
                        [&end, &ran, i] {
                            if (i % 7 == 0)
                                std::this_thread::yield();
                            ++end;
                            ++ran;
                        },
                        [&end] { ++end; });
                }
            });
        }
        for (auto& thread : threads)
            thread.join();
        while (ran < perSubmitter)
            std::this_thread::yield();
    }
    for (std::size_t i = 0; i < ends.size(); ++i)
        ASSERT_EQ(ends[i].load(), 1) << "job " << i;
    // The close may cut a busy run short.
    expectAlternatingBusyAndIdle(journal.snapshot(), false);
}

TEST_P(WorkersTest, BusyAndIdleAlternateWhileTheWorkersLive) {
    Journal journal;
    std::atomic<int> ended{0};
    constexpr int count = 300;
    Workers jobs(
        GetParam(), [&] { journal.add("busy"); }, [&] { journal.add("idle"); });
    for (int i = 0; i < count; ++i)
        jobs.submit([&] { ++ended; });
    while (ended < count)
        std::this_thread::yield();
    ASSERT_TRUE(waitForIdle(journal));
    expectAlternatingBusyAndIdle(journal.snapshot(), true);
}

INSTANTIATE_TEST_SUITE_P(Threads, WorkersTest, testing::Values(1, 2, 0), threadsName);
