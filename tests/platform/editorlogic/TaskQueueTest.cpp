#include "platform/editorlogic/TaskQueue.h"

#include "tests/support/Journal.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

// The queue is a Task::JobQueue seen as a task provider: JobQueueTest holds its contract.

using EditorService::Testing::Journal;

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

TEST(TaskQueueTest, ClosingDropsTheTasksNobodyTook) {
    Journal journal;
    Thumbnail::TaskQueue queue;
    queue.push([&] { journal.add("a"); }, [&] { journal.add("a dropped"); });
    queue.push([&] { journal.add("b"); }, [&] { journal.add("b dropped"); });
    queue.takeTask()();
    queue.close();
    EXPECT_FALSE(queue.takeTask());
    EXPECT_EQ(journal.snapshot(), (std::vector<std::string>{"a", "b dropped"}));
}
