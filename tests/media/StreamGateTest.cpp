#include "media/StreamGate.h"

#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <thread>
#include <vector>

using EditorService::StreamGate;
using EditorService::Testing::Collected;
using EditorService::Testing::FailedWith;
using Json = nlohmann::json;

namespace {

// A gate on a subscriber that records what it gets, as collect() does.
struct GateOnRecord {
    std::shared_ptr<Collected> seen = std::make_shared<Collected>();
    rxcpp::composite_subscription lifetime;
    std::unique_ptr<StreamGate> gate;

    GateOnRecord() {
        auto recorded = seen;
        gate = std::make_unique<StreamGate>(rxcpp::make_subscriber<Json>(
            lifetime,
            [recorded](const Json& value) {
                std::lock_guard<std::mutex> lock(recorded->mutex);
                recorded->values.push_back(value);
            },
            [recorded](std::exception_ptr error) {
                std::lock_guard<std::mutex> lock(recorded->mutex);
                EXPECT_FALSE(recorded->error || recorded->completed);
                recorded->error = error;
            },
            [recorded] {
                std::lock_guard<std::mutex> lock(recorded->mutex);
                EXPECT_FALSE(recorded->error || recorded->completed);
                recorded->completed = true;
            }));
    }
};

} // namespace

TEST(StreamGateTest, ValuesPassInOrderThenTheLastValueAndTheCompletion) {
    GateOnRecord record;
    EXPECT_TRUE(record.gate->next(1));
    EXPECT_TRUE(record.gate->next(2));
    EXPECT_FALSE(record.gate->hasEnded());
    EXPECT_TRUE(record.gate->complete(Json(3)));
    EXPECT_TRUE(record.gate->hasEnded());
    EXPECT_EQ(record.seen->values, (std::vector<Json>{1, 2, 3}));
    EXPECT_TRUE(record.seen->completed);
}

TEST(StreamGateTest, TheFirstEndIsTheOnlyOneAndNothingPassesAfterIt) {
    GateOnRecord record;
    EXPECT_TRUE(record.gate->fail(std::make_exception_ptr(std::runtime_error("first"))));
    EXPECT_FALSE(record.gate->fail(std::make_exception_ptr(std::runtime_error("second"))));
    EXPECT_FALSE(record.gate->complete(Json(1)));
    EXPECT_FALSE(record.gate->next(2));
    EXPECT_FALSE(record.gate->nextWhile([] { return true; }, [] { return Json(3); }));
    EXPECT_TRUE(record.seen->values.empty());
    EXPECT_THAT(record.seen->error, FailedWith<std::runtime_error>("first"));
    EXPECT_FALSE(record.seen->completed);
}

TEST(StreamGateTest, ACompletionWithoutALastValueOnlyCompletes) {
    GateOnRecord record;
    EXPECT_TRUE(record.gate->complete());
    EXPECT_TRUE(record.seen->values.empty());
    EXPECT_TRUE(record.seen->completed);
}

TEST(StreamGateTest, AConditionalValuePassesOnlyWhileItsConditionHolds) {
    GateOnRecord record;
    int made = 0;
    EXPECT_FALSE(record.gate->nextWhile([] { return false; }, [&] { return Json(++made); }));
    EXPECT_TRUE(record.gate->nextWhile([] { return true; }, [&] { return Json(++made); }));
    EXPECT_EQ(made, 1);
    EXPECT_EQ(record.seen->values, std::vector<Json>{1});
}

TEST(StreamGateTest, ASubscriberThatEndsTheStreamInsideOnNextIsServedOnce) {
    auto ends = std::make_shared<int>(0);
    std::unique_ptr<StreamGate> gate;
    rxcpp::composite_subscription lifetime;
    gate = std::make_unique<StreamGate>(rxcpp::make_subscriber<Json>(
        lifetime,
        [&gate](const Json&) {
            gate->fail(std::make_exception_ptr(std::runtime_error("from inside")));
        },
        [ends](std::exception_ptr) { ++*ends; }, [ends] { ++*ends; }));
    EXPECT_TRUE(gate->next(1));
    EXPECT_FALSE(gate->complete());
    EXPECT_EQ(*ends, 1);
}

TEST(StreamGateTest, AnUnsubscriptionRunsWhatWasHungOnIt) {
    GateOnRecord record;
    bool ran = false;
    record.gate->onUnsubscribe([&ran] { ran = true; });
    EXPECT_FALSE(ran);
    record.lifetime.unsubscribe();
    EXPECT_TRUE(ran);
}

// Meant for ThreadSanitizer too: threads deliver values while others end the stream.
TEST(StreamGateTest, ValuesFromManyThreadsNeverOverlapAndOneEndWins) {
    std::atomic<int> inside{0};
    std::atomic<bool> overlapped{false};
    std::atomic<int> endsSeen{0};
    StreamGate gate(rxcpp::make_subscriber<Json>(
        [&](const Json&) {
            if (++inside > 1)
                overlapped = true;
            std::this_thread::yield();
            --inside;
        },
        [&](std::exception_ptr) { ++endsSeen; }, [&] { ++endsSeen; }));
    std::atomic<int> ends{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 500; ++i)
                gate.next(i);
            const bool ended = t % 2 == 0
                                   ? gate.complete()
                                   : gate.fail(std::make_exception_ptr(std::runtime_error("end")));
            ends += ended ? 1 : 0;
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_FALSE(overlapped);
    EXPECT_EQ(ends.load(), 1);
    EXPECT_EQ(endsSeen.load(), 1);
}
