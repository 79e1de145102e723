#include <rxcpp/rx.hpp>

#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <vector>

using EditorService::Testing::Recorder;
using rxcpp::detail::signal_queue;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(SignalQueueTest, OnlyThePushThatFindsTheQueueIdleAsksForADrain) {
    signal_queue<int> queue;
    EXPECT_TRUE(queue.push_value(1));
    EXPECT_FALSE(queue.push_value(2));
    EXPECT_FALSE(queue.push_completed());
}

TEST(SignalQueueTest, ADrainDeliversEverySignalInTheOrderTheyCame) {
    signal_queue<int> queue;
    Recorder r;
    int values = 0;
    queue.push_value(1);
    queue.push_value(2);
    queue.push_completed();
    queue.deliver(r.subscriber<int>(), [&values](bool) { ++values; });
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_next(2)", "on_completed"));
    EXPECT_EQ(values, 2);
}

TEST(SignalQueueTest, OnlyTheLastValueOfABatchIsMarkedLast) {
    signal_queue<int> queue;
    Recorder r;
    std::vector<bool> marks;
    queue.push_value(1);
    queue.push_value(2);
    queue.push_completed();
    queue.deliver(r.subscriber<int>(), [&marks](bool last) { marks.push_back(last); });
    EXPECT_THAT(marks, ElementsAre(false, true));
}

TEST(SignalQueueTest, AValueIsHandedOnByMoveNotCopied) {
    signal_queue<std::shared_ptr<int>> queue;
    long owners = 0;
    queue.push_value(std::make_shared<int>(7));
    queue.deliver(rxcpp::make_subscriber<std::shared_ptr<int>>(
                      [&owners](std::shared_ptr<int> value) { owners = value.use_count(); }),
                  [](bool) {});
    EXPECT_EQ(owners, 1);
}

TEST(SignalQueueTest, AnErrorIsDeliveredAsItCame) {
    signal_queue<int> queue;
    Recorder r;
    queue.push_value(1);
    queue.push_error(std::make_exception_ptr(std::runtime_error("boom")));
    queue.deliver(r.subscriber<int>(), [](bool) {});
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_error(boom)"));
}

TEST(SignalQueueTest, SignalsThatCameDuringADrainNeedAnotherTurn) {
    signal_queue<int> queue;
    Recorder r;
    queue.push_value(1);
    queue.deliver(r.subscriber<int>(), [](bool) {});
    EXPECT_FALSE(queue.push_value(2)); // the drain that is under way will see it
    EXPECT_TRUE(queue.more());
    queue.deliver(r.subscriber<int>(), [](bool) {});
    EXPECT_FALSE(queue.more());
    EXPECT_TRUE(queue.push_value(3)); // idle again: this push schedules the next drain
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_next(2)"));
}

TEST(SignalQueueTest, DroppedSignalsAreNeverDelivered) {
    signal_queue<int> queue;
    Recorder r;
    queue.push_value(1);
    queue.drop();
    queue.deliver(r.subscriber<int>(), [](bool) {});
    EXPECT_THAT(r.lines(), IsEmpty());
}
