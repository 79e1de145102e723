#include "platform/render/FrameQueue.h"

#include "platform/render/Cancelled.h"
#include "platform/render/QueuedSource.h"
#include "platform/render/VideoFormat.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using Velmor::AV::Frame;
using Velmor::Render::Cancelled;
using Velmor::Render::FrameQueue;
using Velmor::Render::QueuedSource;
using Velmor::Render::VideoFormat;

namespace {

Frame timed(std::int64_t time) {
    Frame frame;
    frame.setTimestamp(time);
    return frame;
}

} // namespace

TEST(FrameQueueTest, FramesWrittenAreTakenInOrderThenTheEnd) {
    FrameQueue queue(4);
    for (std::int64_t time = 0; time < 3; ++time) {
        Frame frame = timed(time);
        EXPECT_TRUE(queue.write(frame));
    }
    queue.close();
    Frame frame;
    for (std::int64_t time = 0; time < 3; ++time) {
        ASSERT_TRUE(queue.take(frame));
        EXPECT_EQ(frame.timestamp(), time);
    }
    EXPECT_FALSE(queue.take(frame));
}

TEST(FrameQueueTest, AFinishedConsumerMakesTheNextWriteReturnFalse) {
    FrameQueue queue(4);
    queue.finish();
    Frame frame = timed(0);
    EXPECT_FALSE(queue.write(frame));
}

TEST(FrameQueueTest, ACancelledQueueFailsBothSidesWithCancelled) {
    FrameQueue queue(4);
    queue.cancel();
    Frame frame = timed(0);
    EXPECT_THAT([&] { queue.write(frame); }, FailedWith<Cancelled>("Render cancelled"));
    EXPECT_THAT([&] { queue.take(frame); }, FailedWith<Cancelled>("Render cancelled"));
}

TEST(FrameQueueTest, TheQueuedSourceSaysItsSourcesFormatAndFinishesTheQueue) {
    FrameQueue queue(2);
    QueuedSource<VideoFormat> source(queue, VideoFormat{64, 48, 0, {25, 1}, {1, 12800}});
    EXPECT_EQ(source.format().width, 64);
    EXPECT_EQ(source.format().timeBase, (Velmor::AV::Rational{1, 12800}));
    source.finish();
    Frame frame = timed(0);
    EXPECT_FALSE(queue.write(frame));
}
