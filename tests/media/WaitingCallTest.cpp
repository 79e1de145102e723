#include "media/WaitingCall.h"

#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"
#include "tests/support/ManualScheduler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>

using EditorService::WaitingCall;
using EditorService::WaitingLine;
using EditorService::WaitingPlace;
using EditorService::Testing::collect;
using EditorService::Testing::Collected;
using EditorService::Testing::FailedWith;
using EditorService::Testing::ManualScheduler;
using namespace std::chrono_literals;

namespace {

// Calls to a stand-in controller that keeps them waiting until the test gives them their turn,
// sharing one line, their queued values timed by a manual clock.
class WaitingCallTest : public testing::Test {
protected:
    struct Started {
        std::shared_ptr<WaitingCall> call;
        std::shared_ptr<Collected> values;
    };

    Started start(const std::string& name) {
        auto call = std::make_shared<std::shared_ptr<WaitingCall>>();
        const WaitingPlace place{line, [name](int ahead) { return queued(name, ahead); },
                                 rxcpp::observe_on_one_worker{rxcpp::schedulers::scheduler(timer)}};
        auto values = collect(rxcpp::observable<>::create<nlohmann::json>(
            [call, place](rxcpp::subscriber<nlohmann::json> subscriber) {
                *call = std::make_shared<WaitingCall>(std::move(subscriber), place);
                (*call)->wait();
            }));
        return {*call, values};
    }

    static nlohmann::json queued(const std::string& name, int ahead) {
        return {{"call", {{"name", name}, {"queued", true}, {"ahead", ahead}}}};
    }

    std::shared_ptr<WaitingLine> line = std::make_shared<WaitingLine>();
    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
};

} // namespace

TEST_F(WaitingCallTest, AWaitingCallSaysEvery400MsHowManyWaitBeforeIt) {
    const auto first = start("first");
    const auto second = start("second");
    timer->advanceBy(399ms);
    EXPECT_TRUE(first.values->valuesNow().empty());
    EXPECT_TRUE(second.values->valuesNow().empty());
    timer->advanceBy(1ms);
    EXPECT_EQ(first.values->valuesNow(), std::vector<nlohmann::json>{queued("first", 0)});
    EXPECT_EQ(second.values->valuesNow(), std::vector<nlohmann::json>{queued("second", 1)});
    timer->advanceBy(400ms);
    EXPECT_EQ(first.values->valuesNow().size(), 2u);
    EXPECT_EQ(second.values->valuesNow().size(), 2u);
}

TEST_F(WaitingCallTest, ACallWhoseTurnCameSaysNoMoreThatItWaitsAndNoLongerCountsAheadOfOthers) {
    const auto first = start("first");
    const auto second = start("second");
    EXPECT_TRUE(first.call->wanted());
    timer->advanceBy(800ms);
    EXPECT_TRUE(first.values->valuesNow().empty());
    EXPECT_EQ(second.values->valuesNow(),
              (std::vector<nlohmann::json>{queued("second", 0), queued("second", 0)}));
    first.call->finish({{"call", {{"name", "first"}, {"done", true}}}});
    EXPECT_EQ(first.values->valuesNow().size(), 1u);
    EXPECT_TRUE(first.values->completed);
}

TEST_F(WaitingCallTest, ACallThatEndsWhileItWaitsLeavesTheLineAndSaysNoMore) {
    const auto first = start("first");
    const auto second = start("second");
    first.call->fail(std::make_exception_ptr(std::runtime_error("Thumbnail cancelled: first")));
    EXPECT_THAT(first.values->error, FailedWith<std::runtime_error>("Thumbnail cancelled: first"));
    timer->advanceBy(400ms);
    EXPECT_TRUE(first.values->valuesNow().empty());
    EXPECT_EQ(second.values->valuesNow(), std::vector<nlohmann::json>{queued("second", 0)});
}

TEST_F(WaitingCallTest, ASubscriberThatLeavesTakesItsCallOutOfTheLineAndItsWorkIsNotWanted) {
    rxcpp::composite_subscription leaving;
    std::shared_ptr<WaitingCall> call;
    const WaitingPlace place{line, [](int ahead) { return queued("leaving", ahead); },
                             rxcpp::observe_on_one_worker{rxcpp::schedulers::scheduler(timer)}};
    rxcpp::observable<>::create<nlohmann::json>([&](rxcpp::subscriber<nlohmann::json> subscriber) {
        call = std::make_shared<WaitingCall>(std::move(subscriber), place);
        call->wait();
    }).subscribe(leaving, [](const nlohmann::json&) { ADD_FAILURE() << "a value after leaving"; });
    const auto staying = start("staying");
    leaving.unsubscribe();
    timer->advanceBy(400ms);
    EXPECT_EQ(staying.values->valuesNow(), std::vector<nlohmann::json>{queued("staying", 0)});
    EXPECT_FALSE(call->wanted());
}

TEST_F(WaitingCallTest, WithoutAPlaceACallNeverSaysItWaits) {
    std::shared_ptr<WaitingCall> call;
    const auto values = collect(rxcpp::observable<>::create<nlohmann::json>([&](auto subscriber) {
        call = std::make_shared<WaitingCall>(std::move(subscriber), std::nullopt);
        call->wait();
    }));
    timer->advanceBy(2000ms);
    EXPECT_TRUE(values->values.empty());
    EXPECT_TRUE(call->wanted());
}
