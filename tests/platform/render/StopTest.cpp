#include "platform/render/Stop.h"

#include <gtest/gtest.h>
#include <memory>
#include <thread>

using Velmor::Render::Stop;

TEST(StopTest, TheFirstRequestCallsEachCallbackOnce) {
    Stop stop;
    int calls = 0;
    Stop::Callback callback(stop, [&] { ++calls; });
    EXPECT_FALSE(stop.requested());
    stop.request();
    stop.request();
    EXPECT_TRUE(stop.requested());
    EXPECT_EQ(calls, 1);
}

TEST(StopTest, ACallbackMadeAfterTheRequestIsCalledAtOnce) {
    Stop stop;
    stop.request();
    int calls = 0;
    Stop::Callback callback(stop, [&] { ++calls; });
    EXPECT_EQ(calls, 1);
}

TEST(StopTest, ACallbackThatIsGoneIsNotCalled) {
    Stop stop;
    int calls = 0;
    auto callback = std::make_unique<Stop::Callback>(stop, [&] { ++calls; });
    callback.reset();
    stop.request();
    EXPECT_EQ(calls, 0);
}

TEST(StopTest, ARequestFromAnotherThreadReachesTheCallback) {
    Stop stop;
    std::atomic<int> calls{0};
    Stop::Callback callback(stop, [&] { ++calls; });
    std::thread requester([&] { stop.request(); });
    requester.join();
    EXPECT_EQ(calls, 1);
}
