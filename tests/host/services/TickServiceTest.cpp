#include "host/services/TickService.h"

#include "service/api/Error.h"
#include "tests/support/Collect.h"
#include "tests/support/FailedWith.h"

#include <QThread>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;

TEST(TickServiceTest, EmitsCountTicksInOrderThenCompletes) {
    TickService service;
    const auto collected =
        collectToEnd(service.run(QStringList{"app", "--count=4", "--interval=1"}));
    EXPECT_EQ(collected->values, (std::vector<nlohmann::json>{
                                     {{"tick", 1}}, {{"tick", 2}}, {{"tick", 3}}, {{"tick", 4}}}));
    EXPECT_TRUE(collected->completed);
}

TEST(TickServiceTest, DefaultsToThreeTicks) {
    TickService service;
    const auto collected = collectToEnd(service.run(QStringList{"app", "--interval=0"}));
    EXPECT_EQ(collected->values.size(), 3u);
}

TEST(TickServiceTest, CountOfZeroCompletesAtOnceInsideSubscribe) {
    TickService service;
    const auto collected = collect(service.run(QStringList{"app", "--count=0"}));
    EXPECT_TRUE(collected->completed);
    EXPECT_TRUE(collected->values.empty());
}

TEST(TickServiceTest, TicksArriveOnAThreadOfItsOwn) {
    TickService service;
    std::atomic<bool> onCaller{false};
    const auto caller = QThread::currentThread();
    std::atomic<bool> done{false};
    service.run(QStringList{"app", "--count=2", "--interval=0"})
        .subscribe(
            [&](const nlohmann::json&) {
                onCaller = onCaller || QThread::currentThread() == caller;
            },
            [&](std::exception_ptr) { done = true; }, [&] { done = true; });
    ASSERT_TRUE(spinUntil([&] { return done.load(); }));
    EXPECT_FALSE(onCaller);
}

TEST(TickServiceTest, UnsubscribingStopsTheTicks) {
    TickService service;
    std::atomic<int> ticks{0};
    rxcpp::composite_subscription lifetime;
    service.run(QStringList{"app", "--count=1000000", "--interval=1"})
        .subscribe(
            lifetime, [&](const nlohmann::json&) { ++ticks; }, [](std::exception_ptr) {});
    ASSERT_TRUE(spinUntil([&] { return ticks > 0; }));
    lifetime.unsubscribe();
    const int stopped = ticks;
    spinFor(std::chrono::milliseconds(50));
    EXPECT_EQ(ticks, stopped);
}

TEST(TickServiceTest, NegativeCountFailsWithError) {
    TickService service;
    const auto collected = collect(service.run(QStringList{"app", "--count=-1"}));
    EXPECT_THAT(collected->error,
                FailedWith<EditorService::Error>("--count must not be negative, is -1"));
    const auto interval = collect(service.run(QStringList{"app", "--interval=-5"}));
    EXPECT_THAT(interval->error,
                FailedWith<EditorService::Error>("--interval must not be negative, is -5"));
}

TEST(TickServiceTest, CountThatIsNoNumberFailsWithTheParseMessage) {
    TickService service;
    const auto collected = collect(service.run(QStringList{"app", "--count=many"}));
    EXPECT_THAT(collected->error, FailedWith<std::runtime_error>("Can not parse \"many\" as int"));
}
