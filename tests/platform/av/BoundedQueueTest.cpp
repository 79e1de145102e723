#include "platform/av/BoundedQueue.h"

#include <gtest/gtest.h>
#include <memory>
#include <thread>

using Velmor::AV::BoundedQueue;

TEST(BoundedQueueTest, ItemsComeOutInTheOrderTheyWentIn) {
    BoundedQueue<int> queue(3);
    EXPECT_TRUE(queue.push(1));
    EXPECT_TRUE(queue.push(2));
    EXPECT_EQ(queue.size(), 2u);
    EXPECT_EQ(queue.pop(), 1);
    EXPECT_EQ(queue.pop(), 2);
}

TEST(BoundedQueueTest, AClosedQueueGivesOutWhatIsLeftThenNothing) {
    BoundedQueue<int> queue(3);
    queue.push(7);
    queue.close();
    EXPECT_FALSE(queue.push(8));
    EXPECT_EQ(queue.pop(), 7);
    EXPECT_EQ(queue.pop(), std::nullopt);
}

TEST(BoundedQueueTest, MoveOnlyItemsPassThrough) {
    BoundedQueue<std::unique_ptr<int>> queue(1);
    queue.push(std::make_unique<int>(5));
    EXPECT_EQ(**queue.pop(), 5);
}

TEST(BoundedQueueTest, AProducerWaitsWhileTheQueueIsFullAndGoesOnAsItEmpties) {
    BoundedQueue<int> queue(2);
    std::thread producer([&] {
        for (int item = 0; item < 100; ++item)
            queue.push(item);
        queue.close();
    });
    int expected = 0;
    while (auto item = queue.pop()) {
        EXPECT_LE(queue.size(), queue.capacity());
        EXPECT_EQ(*item, expected++);
    }
    producer.join();
    EXPECT_EQ(expected, 100);
}

TEST(BoundedQueueTest, CancelReleasesAProducerWaitingOnAFullQueue) {
    BoundedQueue<int> queue(1);
    queue.push(1);
    bool pushed = true;
    std::thread producer([&] { pushed = queue.push(2); });
    queue.cancel();
    producer.join();
    EXPECT_FALSE(pushed);
    EXPECT_TRUE(queue.cancelled());
}

TEST(BoundedQueueTest, CancelReleasesAConsumerWaitingOnAnEmptyQueueAndDropsWhatIsLeft) {
    BoundedQueue<int> queue(2);
    std::optional<int> popped = 1;
    std::thread consumer([&] { popped = queue.pop(); });
    queue.cancel();
    consumer.join();
    EXPECT_EQ(popped, std::nullopt);
    EXPECT_FALSE(queue.push(3));
    EXPECT_EQ(queue.size(), 0u);
}

TEST(BoundedQueueTest, FinishReleasesAProducerWaitingOnAFullQueueWithoutCancellingIt) {
    BoundedQueue<int> queue(1);
    queue.push(1);
    bool pushed = true;
    std::thread producer([&] { pushed = queue.push(2); });
    queue.finish();
    producer.join();
    EXPECT_FALSE(pushed);
    EXPECT_TRUE(queue.finished());
    EXPECT_FALSE(queue.cancelled());
}

TEST(BoundedQueueTest, AFinishedQueueDropsWhatIsLeftAndRefusesMore) {
    BoundedQueue<int> queue(3);
    queue.push(1);
    queue.push(2);
    queue.finish();
    EXPECT_EQ(queue.size(), 0u);
    EXPECT_EQ(queue.pop(), std::nullopt);
    EXPECT_FALSE(queue.push(3));
}
