#include <rxcpp/rx.hpp>

#include "tests/support/ManualScheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using EditorService::Testing::ManualScheduler;
using rxcpp::schedulers::schedulable;
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SchedulerTest : public testing::Test {
protected:
    std::shared_ptr<ManualScheduler> manual = std::make_shared<ManualScheduler>();
    rxcpp::schedulers::scheduler scheduler{manual};
    rxcpp::schedulers::worker worker = scheduler.create_worker();
    std::vector<std::string> order;
};

} // namespace

TEST(MakeSchedulerTest, BuildsACustomSchedulerFromItsArguments) {
    auto scheduler = rxcpp::schedulers::make_scheduler<ManualScheduler>();
    EXPECT_EQ(scheduler.now(), ManualScheduler::zero());
    EXPECT_EQ(scheduler.create_worker().now(), ManualScheduler::zero());
}

TEST_F(SchedulerTest, WorkerRunsActionsInTimeOrderAndQueueOrderForEqualTimes) {
    const auto t0 = worker.now();
    worker.schedule(t0 + milliseconds(20), [&](const schedulable&) { order.push_back("b1"); });
    worker.schedule(t0 + milliseconds(10), [&](const schedulable&) { order.push_back("a"); });
    worker.schedule(t0 + milliseconds(20), [&](const schedulable&) { order.push_back("b2"); });
    worker.schedule([&](const schedulable&) { order.push_back("now"); });
    EXPECT_THAT(order, IsEmpty());
    manual->advanceBy(milliseconds(15));
    EXPECT_THAT(order, ElementsAre("now", "a"));
    manual->advanceBy(milliseconds(15));
    EXPECT_THAT(order, ElementsAre("now", "a", "b1", "b2"));
}

TEST_F(SchedulerTest, ActionSeesTheClockAtItsOwnTime) {
    std::chrono::steady_clock::time_point seen;
    worker.schedule(worker.now() + milliseconds(7),
                    [&](const schedulable& self) { seen = self.now(); });
    manual->advanceBy(milliseconds(100));
    EXPECT_EQ(seen, ManualScheduler::zero() + milliseconds(7));
    EXPECT_EQ(manual->elapsedMs(), 100);
}

TEST_F(SchedulerTest, SchedulablesOwnLifetimeCancelsIt) {
    rxcpp::composite_subscription cs;
    worker.schedule(
        schedulable(cs, worker, [&](const schedulable&) { order.push_back("cancelled"); }));
    worker.schedule([&](const schedulable&) { order.push_back("kept"); });
    cs.unsubscribe();
    manual->advanceBy(milliseconds(1));
    EXPECT_THAT(order, ElementsAre("kept"));
}

TEST_F(SchedulerTest, WorkersLifetimeCancelsEverythingOnIt) {
    worker.schedule([&](const schedulable&) { order.push_back("a"); });
    worker.unsubscribe();
    worker.schedule([&](const schedulable&) { order.push_back("b"); });
    manual->advanceBy(milliseconds(1));
    EXPECT_THAT(order, IsEmpty());
}

TEST_F(SchedulerTest, ActionCanRescheduleItselfAtALaterTime) {
    worker.schedule([&](const schedulable& self) {
        order.push_back(std::to_string(manual->elapsedMs()));
        if (order.size() < 3)
            self.schedule(self.now() + milliseconds(10));
    });
    manual->advanceBy(milliseconds(100));
    EXPECT_THAT(order, ElementsAre("0", "10", "20"));
}

TEST_F(SchedulerTest, CoordinationsHandOutWorkersOfTheirScheduler) {
    rxcpp::observe_on_one_worker observeOn(scheduler);
    rxcpp::identity_one_worker identity(scheduler);
    EXPECT_EQ(observeOn.now(), ManualScheduler::zero());
    EXPECT_EQ(identity.now(), ManualScheduler::zero());
    observeOn.create_coordinator().get_worker().schedule(
        [&](const schedulable&) { order.push_back("observe_on"); });
    identity.create_coordinator().get_worker().schedule(
        [&](const schedulable&) { order.push_back("identity"); });
    manual->advanceBy(milliseconds(0));
    EXPECT_THAT(order, ElementsAre("observe_on", "identity"));
}

TEST_F(SchedulerTest, CopiesOfASchedulerAreEqualAndOtherSchedulersAreNot) {
    const auto copy = scheduler;
    EXPECT_TRUE(copy == scheduler);
    EXPECT_FALSE(copy != scheduler);
    EXPECT_NE(scheduler, rxcpp::schedulers::make_scheduler<ManualScheduler>());
}

TEST_F(SchedulerTest, WorkerEqualsItsCopiesButNoOtherWorkerOfTheScheduler) {
    const auto copy = worker;
    EXPECT_TRUE(copy == worker);
    EXPECT_FALSE(copy != worker);
    EXPECT_NE(worker, scheduler.create_worker());
}

TEST_F(SchedulerTest, WorkerMadeWithACompositeHasThatCompositeAsItsLifetime) {
    rxcpp::composite_subscription cs;
    EXPECT_EQ(scheduler.create_worker(cs).get_subscription(), cs);
}

TEST_F(SchedulerTest, WorkerClearEndsWhatWasAddedAndKeepsTheWorker) {
    int calls = 0;
    worker.add([&] { ++calls; });
    worker.clear();
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(worker.is_subscribed());
}

TEST_F(SchedulerTest, SchedulableRemoveAndClearWorkOnItsOwnLifetime) {
    rxcpp::composite_subscription cs;
    schedulable action(cs, worker, [](const schedulable&) {});
    int removed = 0;
    int cleared = 0;
    auto handle = action.add([&] { ++removed; });
    action.remove(handle);
    action.add([&] { ++cleared; });
    action.clear();
    EXPECT_EQ(cleared, 1);
    EXPECT_TRUE(action.is_subscribed());
    action.unsubscribe();
    EXPECT_EQ(removed, 0);
    EXPECT_EQ(action.get_subscription(), cs);
}
