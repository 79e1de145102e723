#include "platform/editorlogic/TaskQueue.h"

#include <gtest/gtest.h>

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
