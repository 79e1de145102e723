#include "platform/editorlogic/TaskQueue.h"

#include "tests/support/Journal.h"
#include "tests/support/Releaser.h"

#include <chrono>
#include <functional>
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

namespace {

constexpr auto generously = std::chrono::seconds(60);

} // namespace

TEST(TaskQueueTest, GivesTasksInTheOrderTheyCameThenNothing) {
    Thumbnail::TaskQueue queue;
    std::vector<int> ran;
    queue.push([&] { ran.push_back(1); });
    queue.push([&] { ran.push_back(2); });
    while (auto task = queue.takeTask())
        task();
    EXPECT_EQ(ran, (std::vector<int>{1, 2}));
    EXPECT_FALSE(queue.takeTask());
}

TEST(TaskQueueTest, ClosingTellsTheTasksNobodyTookInOrderAndNeverThoseTaken) {
    Journal journal;
    Thumbnail::TaskQueue queue;
    queue.push([&] { journal.add("a"); }, [&] { journal.add("a dropped"); });
    queue.push([&] { journal.add("b"); }, [&] { journal.add("b dropped"); });
    queue.push([&] { journal.add("c"); });
    queue.push([&] { journal.add("d"); }, [&] { journal.add("d dropped"); });
    queue.takeTask()();
    queue.close();
    EXPECT_FALSE(queue.takeTask());
    const std::vector<std::string> expected{"a", "b dropped", "d dropped"};
    EXPECT_EQ(journal.snapshot(), expected);
}

TEST(TaskQueueTest, ATaskPushedAfterClosingIsDroppedAtOnce) {
    Journal journal;
    Thumbnail::TaskQueue queue;
    queue.close();
    queue.push([&] { journal.add("ran"); }, [&] { journal.add("dropped"); });
    EXPECT_FALSE(queue.takeTask());
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"dropped"});
}

TEST(TaskQueueTest, ClosingLetsGoOfTheUntakenTasksThenWaitsForTheTakenOneBeforeTellingThem) {
    Journal journal;
    Thumbnail::TaskQueue queue;
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    queue.push([&, released] {
        started.set_value();
        released.wait();
        journal.add("running ended");
    });
    // The running task ends only when close() lets go of the queued one.
    auto releaser = std::make_shared<Releaser>();
    releaser->release = [&release] { release.set_value(); };
    queue.push([releaser] {}, [&] { journal.add("queued dropped"); });
    releaser.reset();
    std::thread worker([task = queue.takeTask()] { task(); });
    ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    queue.close();
    worker.join();
    const std::vector<std::string> expected{"running ended", "queued dropped"};
    EXPECT_EQ(journal.snapshot(), expected);
}

TEST(TaskQueueTest, ADroppedThatThrowsEndsAlone) {
    Journal journal;
    Thumbnail::TaskQueue queue;
    queue.push([] {}, [] { throw std::runtime_error("broken"); });
    queue.push([] {}, [&] { journal.add("told"); });
    queue.close();
    EXPECT_EQ(journal.snapshot(), std::vector<std::string>{"told"});
}
