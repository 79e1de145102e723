#include <rxcpp/rx.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <thread>

using rxcpp::schedulers::schedulable;
using testing::ElementsAre;

TEST(CurrentThreadTest, RunsAnActionAtOnceOnTheCallingThread) {
    auto worker = rxcpp::schedulers::make_current_thread().create_worker();
    std::thread::id ranOn;
    worker.schedule([&](const schedulable&) { ranOn = std::this_thread::get_id(); });
    EXPECT_EQ(ranOn, std::this_thread::get_id());
}

TEST(CurrentThreadTest, ActionsScheduledByAnActionRunAfterItInTimeOrder) {
    auto worker = rxcpp::schedulers::make_current_thread().create_worker();
    std::vector<std::string> order;
    worker.schedule([&](const schedulable& self) {
        const auto now = self.now();
        self.get_worker().schedule(now + std::chrono::milliseconds(2),
                                   [&](const schedulable&) { order.push_back("later"); });
        self.get_worker().schedule([&](const schedulable&) { order.push_back("next"); });
        order.push_back("outer");
    });
    EXPECT_THAT(order, ElementsAre("outer", "next", "later"));
}

TEST(CurrentThreadTest, IdentityCoordinationGivesACurrentThreadWorker) {
    auto worker = rxcpp::identity_current_thread().create_coordinator().get_worker();
    bool ran = false;
    worker.schedule([&](const schedulable&) { ran = true; });
    EXPECT_TRUE(ran);
}
