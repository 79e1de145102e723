#include <rxcpp/rx.hpp>

#include "tests/support/ManualScheduler.h"
#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <thread>

using EditorService::Testing::ManualScheduler;
using EditorService::Testing::Recorder;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ObserveOnTest : public testing::Test {
protected:
    void runWorker() { manual->advanceBy(std::chrono::milliseconds(0)); }

    std::shared_ptr<ManualScheduler> manual = std::make_shared<ManualScheduler>();
    rxcpp::observe_on_one_worker coordination{rxcpp::schedulers::scheduler(manual)};
    rxcpp::subjects::subject<int> source;
    Recorder r;
};

} // namespace

TEST_F(ObserveOnTest, NothingIsDeliveredInsideTheCallThatQueuedIt) {
    source.get_observable().observe_on(coordination).subscribe(r.subscriber<int>());
    source.get_subscriber().on_next(1);
    EXPECT_THAT(r.lines(), IsEmpty());
    runWorker();
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)"));
}

TEST_F(ObserveOnTest, CompletionWaitsBehindTheQueuedValues) {
    source.get_observable().observe_on(coordination).subscribe(r.subscriber<int>());
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_next(2);
    source.get_subscriber().on_completed();
    EXPECT_THAT(r.lines(), IsEmpty());
    runWorker();
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_next(2)", "on_completed"));
}

TEST_F(ObserveOnTest, ErrorWaitsBehindTheQueuedValues) {
    source.get_observable().observe_on(coordination).subscribe(r.subscriber<int>());
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_error(std::make_exception_ptr(std::runtime_error("boom")));
    runWorker();
    EXPECT_THAT(r.lines(), ElementsAre("on_next(1)", "on_error(boom)"));
}

TEST_F(ObserveOnTest, UnsubscribingDropsWhatIsQueuedAndReachesTheSource) {
    rxcpp::composite_subscription cs;
    source.get_observable()
        .observe_on(coordination)
        .subscribe(
            cs, [&](int v) { r.add(std::to_string(v)); }, [](std::exception_ptr) {});
    source.get_subscriber().on_next(1);
    source.get_subscriber().on_next(2);
    cs.unsubscribe();
    EXPECT_FALSE(source.has_observers());
    runWorker();
    EXPECT_THAT(r.lines(), IsEmpty());
}

TEST_F(ObserveOnTest, ValuesQueuedWhileDeliveringComeInALaterTurn) {
    source.get_observable()
        .observe_on(coordination)
        .subscribe(
            [&](int v) {
                r.add("got " + std::to_string(v));
                if (v == 1)
                    source.get_subscriber().on_next(2);
            },
            [](std::exception_ptr) {});
    source.get_subscriber().on_next(1);
    runWorker();
    EXPECT_THAT(r.lines(), ElementsAre("got 1", "got 2"));
}

TEST(ObserveOnNewThreadTest, KeepsTheOrderOfManyValuesFromAnotherThread) {
    rxcpp::subjects::subject<int> source;
    std::vector<int> received;
    std::set<std::thread::id> threads;
    Recorder done;
    source.get_observable()
        .observe_on(rxcpp::observe_on_new_thread())
        .subscribe(
            [&](int v) {
                received.push_back(v);
                threads.insert(std::this_thread::get_id());
            },
            [&](std::exception_ptr) { done.add("error"); }, [&] { done.add("completed"); });
    std::thread producer([&] {
        for (int i = 0; i < 20000; ++i)
            source.get_subscriber().on_next(i);
        source.get_subscriber().on_completed();
    });
    const auto producerId = producer.get_id();
    producer.join();
    ASSERT_TRUE(done.waitForLines(1));
    EXPECT_THAT(done.lines(), ElementsAre("completed"));
    ASSERT_EQ(received.size(), 20000u);
    for (int i = 0; i < 20000; ++i)
        ASSERT_EQ(received[i], i);
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_NE(*threads.begin(), producerId);
    EXPECT_NE(*threads.begin(), std::this_thread::get_id());
}

TEST(ObserveOnNewThreadTest, EachSubscriptionHasAWorkerOfItsOwn) {
    rxcpp::subjects::subject<int> source;
    auto moved = source.get_observable().observe_on(rxcpp::observe_on_new_thread());
    Recorder r;
    std::mutex lock;
    std::set<std::thread::id> threads;
    for (int i = 0; i < 2; ++i)
        moved.subscribe(
            [&](int) {
                {
                    std::lock_guard<std::mutex> guard(lock);
                    threads.insert(std::this_thread::get_id());
                }
                r.add("value");
            },
            [](std::exception_ptr) {});
    // Both workers are alive until completion, so their threads cannot share an id.
    source.get_subscriber().on_next(1);
    ASSERT_TRUE(r.waitForLines(2));
    {
        std::lock_guard<std::mutex> guard(lock);
        EXPECT_EQ(threads.size(), 2u);
    }
    source.get_subscriber().on_completed();
}
