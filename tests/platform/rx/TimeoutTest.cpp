#include <rxcpp/rx.hpp>

#include "tests/support/ManualScheduler.h"
#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <type_traits>

using EditorService::Testing::FailedWith;
using EditorService::Testing::failureText;
using EditorService::Testing::ManualScheduler;
using EditorService::Testing::Recorder;
using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class TimeoutTest : public testing::Test {
protected:
    // The source, which writes down when it is subscribed and let go.
    rxcpp::observable<int> source() {
        return rxcpp::observable<>::create<int>([this](rxcpp::subscriber<int> s) {
            r.add("subscribed");
            s.add([this] { r.add("unsubscribed"); });
            values.get_observable().subscribe(s);
        });
    }

    void advanceTo(long long ms) { manual->advanceTo(ManualScheduler::zero() + milliseconds(ms)); }

    void emitAt(long long ms, int v) {
        advanceTo(ms);
        values.get_subscriber().on_next(v);
        advanceTo(ms);
    }

    std::shared_ptr<ManualScheduler> manual = std::make_shared<ManualScheduler>();
    rxcpp::observe_on_one_worker coordination{rxcpp::schedulers::scheduler(manual)};
    rxcpp::subjects::subject<int> values;
    Recorder r{[this] { return manual->elapsedMs(); }};
};

} // namespace

TEST_F(TimeoutTest, SilenceForThePeriodFailsWithTimeoutError) {
    std::exception_ptr error;
    source()
        .timeout(seconds(10), coordination)
        .subscribe([](int) {},
                   [&](std::exception_ptr e) {
                       error = e;
                       r.add("on_error");
                   });
    advanceTo(9999);
    EXPECT_THAT(r.lines(), ElementsAre("0 subscribed"));
    advanceTo(10000);
    EXPECT_THAT(r.lines(), ElementsAre("0 subscribed", "10000 on_error", "10000 unsubscribed"));
    EXPECT_THAT(error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
    // Code written against RxCpp catches its timeout as a std::runtime_error.
    static_assert(std::is_convertible_v<const rxcpp::timeout_error*, const std::runtime_error*>);
}

TEST_F(TimeoutTest, EachValueReArmsTheTimerAndTheStaleTimerDoesNothing) {
    source().timeout(seconds(10), coordination).subscribe(r.subscriber<int>());
    emitAt(5000, 1);
    advanceTo(10000);
    advanceTo(14999);
    EXPECT_THAT(r.lines(), ElementsAre("0 subscribed", "5000 on_next(1)"));
    advanceTo(15000);
    EXPECT_THAT(r.lines(),
                ElementsAre("0 subscribed", "5000 on_next(1)",
                            "15000 on_error(timeout has occurred)", "15000 unsubscribed"));
}

TEST_F(TimeoutTest, ValuesMoreOftenThanThePeriodNeverTimeOut) {
    source().timeout(seconds(1), coordination).subscribe(r.subscriber<int>());
    for (int i = 1; i <= 20; ++i)
        emitAt(i * 500, i);
    values.get_subscriber().on_completed();
    advanceTo(60000);
    const auto lines = r.lines();
    ASSERT_EQ(lines.size(), 23u);
    EXPECT_EQ(lines[20], "10000 on_next(20)");
    // A source that completes ends its own subscription at once; its completion then reaches
    // downstream on the worker.
    EXPECT_EQ(lines[21], "10000 unsubscribed");
    EXPECT_EQ(lines[22], "10000 on_completed");
}

TEST_F(TimeoutTest, ValuesBeforeTheExpiryArriveAheadOfTheError) {
    source().timeout(seconds(10), coordination).subscribe(r.subscriber<int>());
    emitAt(1000, 1);
    emitAt(2000, 2);
    advanceTo(30000);
    EXPECT_THAT(r.lines(),
                ElementsAre("0 subscribed", "1000 on_next(1)", "2000 on_next(2)",
                            "12000 on_error(timeout has occurred)", "12000 unsubscribed"));
}

TEST_F(TimeoutTest, CompletionWithoutValuesInsideThePeriodCompletes) {
    source().timeout(seconds(10), coordination).subscribe(r.subscriber<int>());
    advanceTo(3000);
    values.get_subscriber().on_completed();
    advanceTo(60000);
    EXPECT_THAT(r.lines(), ElementsAre("0 subscribed", "3000 unsubscribed", "3000 on_completed"));
}

TEST_F(TimeoutTest, SourceErrorPassesOnUnchangedOnTheWorker) {
    const auto ep = std::make_exception_ptr(std::runtime_error("boom"));
    std::exception_ptr received;
    source()
        .timeout(seconds(10), coordination)
        .subscribe([](int) {}, [&](std::exception_ptr e) { received = e; });
    advanceTo(3000);
    values.get_subscriber().on_error(ep);
    EXPECT_EQ(received, nullptr);
    advanceTo(3000);
    EXPECT_EQ(received, ep);
    advanceTo(60000);
    EXPECT_EQ(received, ep);
}

TEST_F(TimeoutTest, ValuesReachDownstreamOnlyOnTheWorker) {
    source().timeout(seconds(10), coordination).subscribe(r.subscriber<int>());
    values.get_subscriber().on_next(1);
    EXPECT_THAT(r.lines(), ElementsAre("0 subscribed"));
    advanceTo(0);
    EXPECT_THAT(r.lines(), ElementsAre("0 subscribed", "0 on_next(1)"));
}

TEST_F(TimeoutTest, UnsubscribingLetsGoOfTheSourceOnTheWorker) {
    rxcpp::composite_subscription cs;
    source()
        .timeout(seconds(10), coordination)
        .subscribe(
            cs, [](int) {}, [](std::exception_ptr) {});
    advanceTo(4000);
    cs.unsubscribe();
    EXPECT_TRUE(values.has_observers());
    advanceTo(4000);
    EXPECT_FALSE(values.has_observers());
    advanceTo(60000);
    EXPECT_THAT(r.lines(), ElementsAre("0 subscribed", "4000 unsubscribed"));
}

TEST_F(TimeoutTest, CoordinationMayComeFirst) {
    source().timeout(coordination, seconds(10)).subscribe(r.subscriber<int>());
    emitAt(4000, 1);
    advanceTo(20000);
    EXPECT_THAT(r.lines(),
                ElementsAre("0 subscribed", "4000 on_next(1)",
                            "14000 on_error(timeout has occurred)", "14000 unsubscribed"));
}

TEST_F(TimeoutTest, OnlyOneTimerIsPendingHoweverManyValuesCame) {
    source().timeout(seconds(10), coordination).subscribe(r.subscriber<int>());
    for (int i = 1; i <= 1000; ++i)
        emitAt(i, i);
    EXPECT_EQ(manual->pending(), 1u);
}

TEST(TimeoutOnNewThreadTest, ExpiryIsDeliveredOnTheWorkersThread) {
    Recorder r;
    std::thread::id errorThread;
    rxcpp::observable<>::create<int>([](rxcpp::subscriber<int>) {})
        .timeout(milliseconds(20), rxcpp::observe_on_new_thread())
        .subscribe([](int) {},
                   [&](std::exception_ptr e) {
                       errorThread = std::this_thread::get_id();
                       r.add(failureText(e));
                   });
    ASSERT_TRUE(r.waitForLines(1));
    EXPECT_THAT(r.lines(), ElementsAre("timeout has occurred"));
    EXPECT_NE(errorThread, std::this_thread::get_id());
}
