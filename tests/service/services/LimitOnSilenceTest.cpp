#include "service/services/LimitOnSilence.h"

#include "tests/support/FailedWith.h"
#include "tests/support/ManualScheduler.h"
#include "tests/support/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace EditorService {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using Testing::FailedWith;
using Testing::ManualScheduler;
using Testing::Recorder;
using json = nlohmann::json;

// One clock for the timer and the delivery: the whole chain runs inside advanceTo, on the
// test's thread. Every line of the log is stamped with the virtual milliseconds.
class VirtualChain {
public:
    // The wrapped service's stream: writes down when it is subscribed and released, and keeps
    // its subscriber so that the test can signal through it.
    rxcpp::observable<json> values() {
        return rxcpp::observable<>::create<json>([this](rxcpp::subscriber<json> subscriber) {
            log.add("subscribed");
            subscriber.add([this] { log.add("released"); });
            source.emplace(subscriber);
        });
    }

    std::function<void()> onExpiry() {
        return [this] {
            ++expiries;
            log.add("onExpiry");
        };
    }

    // The failure itself is kept for FailedWith; the log says only where the end fell.
    rxcpp::subscriber<json> subscriber() {
        return rxcpp::make_subscriber<json>(
            lifetime, [this](const json& value) { log.add("on_next(" + value.dump() + ")"); },
            [this](std::exception_ptr e) {
                error = e;
                log.add("on_error", true);
            },
            [this] { log.add("on_completed", true); });
    }

    void subscribe(std::chrono::seconds limit, std::function<void()> expiry) {
        limitOnSilence(values(), limit, std::move(expiry), timer, delivery).subscribe(subscriber());
    }

    void subscribe(std::chrono::seconds limit = 1s) { subscribe(limit, onExpiry()); }

    void advanceTo(long long ms) { manual->advanceTo(ManualScheduler::zero() + 1ms * ms); }
    void advanceBy(long long ms) { manual->advanceBy(1ms * ms); }
    // Runs what is due now, such as the deliveries a signal has just queued.
    void drain() { manual->advanceBy(0ms); }

    void emitAt(long long ms, int n) {
        advanceTo(ms);
        source->on_next(json(n));
        drain();
    }

    std::shared_ptr<ManualScheduler> manual = std::make_shared<ManualScheduler>();
    rxcpp::observe_on_one_worker timer{rxcpp::schedulers::scheduler(manual)};
    rxcpp::observe_on_one_worker delivery{rxcpp::schedulers::scheduler(manual)};
    Recorder log{[this] { return manual->elapsedMs(); }};
    std::optional<rxcpp::subscriber<json>> source;
    rxcpp::composite_subscription lifetime;
    std::exception_ptr error;
    int expiries = 0;
};

class LimitOnSilenceTest : public testing::Test, protected VirtualChain {};

TEST_F(LimitOnSilenceTest, ValuesArriveAtTheirTicks) {
    subscribe();
    emitAt(200, 1);
    emitAt(700, 2);
    advanceTo(900);
    source->on_completed();
    drain();

    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "200 on_next(1)", "700 on_next(2)",
                                         "900 released", "900 on_completed"));
    EXPECT_EQ(expiries, 0);
}

TEST_F(LimitOnSilenceTest, SilenceExpiresExactlyAtTheLimitAndNotATickBefore) {
    subscribe();
    advanceTo(999);
    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed"));

    advanceTo(1000);

    EXPECT_THAT(log.lines(),
                ElementsAre("0 subscribed", "1000 onExpiry", "1000 on_error", "1000 released"));
    EXPECT_THAT(error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
}

TEST_F(LimitOnSilenceTest, EachValueReArmsTheLimitAndTheStaleTimerDoesNothing) {
    subscribe();
    emitAt(600, 1);
    // The timer set at subscription falls due here; the value has disowned it.
    advanceTo(1000);
    advanceTo(1599);
    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "600 on_next(1)"));
    EXPECT_EQ(manual->pending(), 1u);

    advanceTo(1600);

    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "600 on_next(1)", "1600 onExpiry",
                                         "1600 on_error", "1600 released"));
    EXPECT_EQ(expiries, 1);
}

TEST_F(LimitOnSilenceTest, OnExpiryIsCalledOnceBeforeTheErrorReachesTheSubscriber) {
    std::vector<int> errorsSeenByOnExpiry;
    subscribe(1s, [this, &errorsSeenByOnExpiry] {
        ++expiries;
        errorsSeenByOnExpiry.push_back(log.terminals());
    });

    advanceTo(60000);

    EXPECT_EQ(expiries, 1);
    EXPECT_THAT(errorsSeenByOnExpiry, ElementsAre(0));
    EXPECT_THAT(error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
}

// The timer and the delivery as two queues: the expiry hook runs with the timer, while the
// subscriber hears of values and of the error only when the delivery's worker gets its turn.
TEST_F(LimitOnSilenceTest, OnExpiryRunsOnTheTimerWhileValuesAndErrorWaitForTheDelivery) {
    const auto deliveryQueue = std::make_shared<ManualScheduler>();
    delivery = rxcpp::observe_on_one_worker(rxcpp::schedulers::scheduler(deliveryQueue));
    subscribe();

    emitAt(200, 1);
    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed"));
    deliveryQueue->advanceBy(0ms);
    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "200 on_next(1)"));

    advanceTo(1200);
    EXPECT_EQ(expiries, 1);
    EXPECT_EQ(log.terminals(), 0);
    deliveryQueue->advanceBy(0ms);
    EXPECT_THAT(error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
}

TEST_F(LimitOnSilenceTest, EmptyOnExpiryFailsTheStreamWithBadFunctionCall) {
    subscribe(1s, nullptr);

    advanceTo(1000);

    EXPECT_THAT(error, FailedWith<std::bad_function_call>(std::bad_function_call().what()));
    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "1000 on_error", "1000 released"));
}

TEST_F(LimitOnSilenceTest, ThrowingOnExpiryFailsTheStreamWithWhatItThrew) {
    subscribe(1s, [this] {
        ++expiries;
        throw std::invalid_argument("stopped by the host");
    });

    advanceTo(1000);

    EXPECT_EQ(expiries, 1);
    EXPECT_THAT(error, FailedWith<std::invalid_argument>("stopped by the host"));
}

TEST_F(LimitOnSilenceTest, SourceErrorPassesOnUnchangedWithoutOnExpiry) {
    const auto original = std::make_exception_ptr(std::runtime_error("wrapped failed"));
    subscribe();
    advanceTo(400);

    source->on_error(original);
    drain();
    advanceTo(60000);

    EXPECT_EQ(error, original);
    EXPECT_THAT(error, FailedWith<std::runtime_error>("wrapped failed"));
    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "400 released", "400 on_error"));
    EXPECT_EQ(expiries, 0);
}

TEST_F(LimitOnSilenceTest, CompletionWithoutAValueInsideTheLimitCompletes) {
    subscribe();
    advanceTo(999);

    source->on_completed();
    drain();
    advanceTo(60000);

    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "999 released", "999 on_completed"));
    EXPECT_EQ(expiries, 0);
}

TEST_F(LimitOnSilenceTest, ValuesBeforeTheExpiryArriveAheadOfTheErrorInOrder) {
    subscribe();
    emitAt(100, 1);
    emitAt(200, 2);
    emitAt(300, 3);

    advanceTo(60000);

    EXPECT_THAT(log.lines(),
                ElementsAre("0 subscribed", "100 on_next(1)", "200 on_next(2)", "300 on_next(3)",
                            "1300 onExpiry", "1300 on_error", "1300 released"));
}

TEST_F(LimitOnSilenceTest, ServiceEmittingEveryHalfSecondForTenSecondsCompletesUnderOneSecond) {
    subscribe(1s);
    std::vector<std::string> expected{"0 subscribed"};
    for (int n = 1; n <= 20; ++n) {
        emitAt(n * 500, n);
        expected.push_back(std::to_string(n * 500) + " on_next(" + std::to_string(n) + ")");
    }
    source->on_completed();
    drain();
    advanceTo(60000);

    expected.insert(expected.end(), {"10000 released", "10000 on_completed"});
    EXPECT_THAT(log.lines(), ElementsAreArray(expected));
    EXPECT_EQ(expiries, 0);
}

TEST_F(LimitOnSilenceTest, UnsubscribingReleasesTheSourceAndCancelsTheTimer) {
    subscribe();
    emitAt(200, 1);
    advanceTo(400);

    lifetime.unsubscribe();
    drain();

    EXPECT_THAT(log.lines(), ElementsAre("0 subscribed", "200 on_next(1)", "400 released"));
    // The manual queue keeps the timer's action until its time; its worker has ended, so it
    // runs as nothing, and nothing is left behind it.
    advanceTo(1200);
    EXPECT_EQ(manual->pending(), 0u);
    advanceTo(60000);
    EXPECT_EQ(log.lines().size(), 3u);
    EXPECT_EQ(expiries, 0);
}

TEST_F(LimitOnSilenceTest, TwoChainsOnOneClockKeepTimersOfTheirOwn) {
    VirtualChain busy;
    busy.manual = manual;
    busy.timer = timer;
    busy.delivery = delivery;
    subscribe();
    busy.subscribe();

    // Values of the busy chain re-arm its own timer only.
    busy.emitAt(600, 1);
    advanceTo(1000);
    EXPECT_EQ(expiries, 1);
    EXPECT_EQ(busy.expiries, 0);

    advanceTo(1600);
    EXPECT_EQ(busy.expiries, 1);
}

// The ends of one limited chain, two at a time in every order: whichever comes first decides,
// and the second finds nothing left to end.
enum class End { SourceCompletes, SourceFails, SubscriberUnsubscribes, LimitExpires };

std::string nameOf(End end) {
    switch (end) {
    case End::SourceCompletes:
        return "SourceCompletes";
    case End::SourceFails:
        return "SourceFails";
    case End::SubscriberUnsubscribes:
        return "SubscriberUnsubscribes";
    case End::LimitExpires:
        return "LimitExpires";
    }
    return "?";
}

struct EndPair {
    End first;
    End second;
};

void PrintTo(const EndPair& pair, std::ostream* out) {
    *out << nameOf(pair.first) << " then " << nameOf(pair.second);
}

std::vector<EndPair> everyOrderedPair() {
    const End ends[] = {End::SourceCompletes, End::SourceFails, End::SubscriberUnsubscribes,
                        End::LimitExpires};
    std::vector<EndPair> pairs;
    for (const End first : ends) {
        for (const End second : ends)
            pairs.push_back({first, second});
    }
    return pairs;
}

class LimitOnSilenceLifecycleTest : public testing::TestWithParam<EndPair>, protected VirtualChain {
protected:
    // A value at 200 re-arms the limit for 1200. The source's ends and the unsubscription come
    // 100 ms after the last event; the expiry is the whole limit later, so that it falls due
    // exactly when the chain is still armed and finds nothing to do when it is not.
    void happen(End end) {
        switch (end) {
        case End::SourceCompletes:
            advanceBy(100);
            source->on_completed();
            break;
        case End::SourceFails:
            advanceBy(100);
            source->on_error(failure);
            break;
        case End::SubscriberUnsubscribes:
            advanceBy(100);
            lifetime.unsubscribe();
            break;
        case End::LimitExpires:
            advanceBy(1000);
            break;
        }
        drain();
    }

    static std::vector<std::string> linesAfter(End first) {
        switch (first) {
        case End::SourceCompletes:
            return {"0 subscribed", "200 on_next(1)", "300 released", "300 on_completed"};
        case End::SourceFails:
            return {"0 subscribed", "200 on_next(1)", "300 released", "300 on_error"};
        case End::SubscriberUnsubscribes:
            return {"0 subscribed", "200 on_next(1)", "300 released"};
        case End::LimitExpires:
            return {"0 subscribed", "200 on_next(1)", "1200 onExpiry", "1200 on_error",
                    "1200 released"};
        }
        return {};
    }

    const std::exception_ptr failure = std::make_exception_ptr(std::runtime_error("failed"));
};

TEST_P(LimitOnSilenceLifecycleTest, FirstEndWinsAndNothingFollowsIt) {
    const auto [first, second] = GetParam();
    // Held by the chain's expiry hook: gone once the chain has let go of everything.
    auto chainToken = std::make_shared<int>(0);
    const std::weak_ptr<int> chainAlive = chainToken;
    subscribe(1s, [this, chainToken] {
        ++expiries;
        log.add("onExpiry");
    });
    chainToken.reset();
    emitAt(200, 1);

    happen(first);
    const auto afterFirst = log.lines();
    happen(second);
    advanceTo(60000);

    EXPECT_THAT(afterFirst, ElementsAreArray(linesAfter(first)));
    EXPECT_THAT(log.lines(), ElementsAreArray(linesAfter(first)));
    EXPECT_EQ(log.terminals(), first == End::SubscriberUnsubscribes ? 0 : 1);
    EXPECT_EQ(expiries, first == End::LimitExpires ? 1 : 0);
    if (first == End::SourceFails) {
        EXPECT_EQ(error, failure);
    }
    if (first == End::LimitExpires) {
        EXPECT_THAT(error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
    }
    EXPECT_FALSE(source->is_subscribed());
    EXPECT_EQ(manual->pending(), 0u);
    // The source's own subscriber is the last thing that may hold the chain.
    source.reset();
    EXPECT_TRUE(chainAlive.expired());
}

INSTANTIATE_TEST_SUITE_P(EveryOrderedPair, LimitOnSilenceLifecycleTest,
                         testing::ValuesIn(everyOrderedPair()),
                         [](const testing::TestParamInfo<EndPair>& info) {
                             return nameOf(info.param.first) + "Then" + nameOf(info.param.second);
                         });

} // namespace
} // namespace EditorService
