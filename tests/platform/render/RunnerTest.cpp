#include "platform/render/Runner.h"

#include "platform/render/Cancelled.h"
#include "tests/platform/render/FakeStages.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using EditorService::Testing::Act;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using EditorService::Testing::FakeSink;
using EditorService::Testing::FakeVideo;
using Velmor::Render::Cancelled;
using Velmor::Render::Runner;

namespace {

std::vector<std::int64_t> upTo(int count) {
    std::vector<std::int64_t> times;
    for (int time = 0; time < count; ++time)
        times.push_back(time);
    return times;
}

} // namespace

TEST(RunnerTest, FramesPassFromSourceToSinkInOrderAndTheEndClosesTheSinkOnce) {
    Runner runner;
    FakeVideo source(20, runner.stop());
    FakeSink sink(runner.stop());
    runner.connect(source, sink);
    runner.run();
    EXPECT_EQ(sink.taken, upTo(20));
    EXPECT_EQ(sink.closed, 1);
}

TEST(RunnerTest, FramesCrossThreadBoundariesInOrder) {
    Runner runner;
    FakeVideo source(50, runner.stop());
    FakeSink sink(runner.stop());
    auto& first = runner.boundary(source, 1);
    auto& second = runner.boundary(first, 3);
    runner.connect(second, sink);
    EXPECT_EQ(second.format().width, 16);
    runner.run();
    EXPECT_EQ(sink.taken, upTo(50));
    EXPECT_EQ(sink.closed, 1);
}

TEST(RunnerTest, ASourceThatFailsOnFrameNEndsTheRenderWithItsFailureAndLeavesTheSinkOpen) {
    Runner runner;
    FakeVideo source(20, runner.stop());
    source.script.what = Act::Fail;
    source.script.at = 3;
    FakeSink sink(runner.stop());
    runner.connect(runner.boundary(source, 2), sink);
    EXPECT_THAT([&] { runner.run(); }, FailedWith<std::runtime_error>("source failed on frame 3"));
    // The failure stops the render at once: what was queued is dropped.
    ASSERT_LE(sink.taken.size(), 3u);
    EXPECT_EQ(sink.taken, upTo(static_cast<int>(sink.taken.size())));
    EXPECT_EQ(sink.closed, 0);
}

TEST(RunnerTest, ASinkThatWantsNoMoreFinishesTheSourceAcrossABoundaryAndTheRenderSucceeds) {
    Runner runner;
    FakeVideo source(1000, runner.stop());
    FakeSink sink(runner.stop());
    sink.refuseFrom = 5;
    runner.connect(runner.boundary(source, 2), sink);
    runner.run();
    EXPECT_EQ(sink.taken, upTo(5));
    EXPECT_EQ(sink.closed, 0);
    EXPECT_TRUE(source.finished);
    EXPECT_LT(source.pulled, 1000);
}

TEST(RunnerTest, AWriterThatBlocksHoldsTheSourceBackByTheQueuesCapacities) {
    Runner runner;
    FakeVideo source(1000, runner.stop());
    FakeSink sink(runner.stop());
    sink.script.what = Act::WaitForTest;
    sink.script.at = 0;
    runner.connect(runner.boundary(runner.boundary(source, 2), 2), sink);
    int pulledWhileBlocked = 0;
    std::thread test([&] {
        sink.script.arrived.wait();
        // The sink holds frame 0; each boundary holds its queue's two frames and one it waits
        // to hand over: seven, and no more while the sink blocks.
        while (source.pulled < 7)
            std::this_thread::yield();
        pulledWhileBlocked = source.pulled;
        sink.script.proceed.open();
    });
    runner.run();
    test.join();
    EXPECT_EQ(pulledWhileBlocked, 7);
    EXPECT_EQ(sink.taken, upTo(1000));
}

TEST(RunnerTest, ACancelBeforeTheRunStartsNothing) {
    Runner runner;
    FakeVideo source(20, runner.stop());
    FakeSink sink(runner.stop());
    runner.connect(runner.boundary(source, 2), sink);
    runner.cancel();
    EXPECT_THAT([&] { runner.run(); }, FailedWith<Cancelled>("Render cancelled"));
    EXPECT_EQ(source.pulled, 0);
    EXPECT_TRUE(runner.cancelled());
}

TEST(RunnerTest, ARunnerRunsOnce) {
    Runner runner;
    runner.run();
    EXPECT_THAT([&] { runner.run(); }, FailedWith<std::logic_error>("A render runs once"));
}

namespace {

// How a render with two connections ends: a source A into a sink, and a source B into another.
struct Ending {
    const char* name;
    Act a;
    Act b;
    // When the test cancels: never, once A arrived at its act, or once the render stopped.
    enum { Never, WhenAArrived, AfterTheStop } cancel;
    // The failure run() throws; empty for none.
    const char* failure;
    bool cancelled;
};

class RunnerEndingTest : public testing::TestWithParam<Ending> {};

} // namespace

TEST_P(RunnerEndingTest, TheRenderEndsAsTheTableSays) {
    const Ending& row = GetParam();
    Runner runner;
    FakeVideo a(10, runner.stop());
    FakeVideo b(10, runner.stop());
    a.script.what = row.a;
    a.script.at = 2;
    b.script.what = row.b;
    b.script.at = 0;
    FakeSink aSink(runner.stop());
    FakeSink bSink(runner.stop());
    runner.connect(runner.boundary(a, 2), aSink);
    runner.connect(b, bSink);
    std::thread test([&] {
        if (row.cancel == Ending::WhenAArrived) {
            a.script.arrived.wait();
            runner.cancel();
        }
        if (row.cancel == Ending::AfterTheStop) {
            a.script.stopped.wait();
            runner.cancel();
        }
        b.script.proceed.open();
    });
    const std::exception_ptr failure = failureOf([&] { runner.run(); });
    test.join();
    if (row.cancelled)
        EXPECT_THAT(failure, FailedWith<Cancelled>("Render cancelled"));
    else if (*row.failure)
        EXPECT_THAT(failure, FailedWith<std::runtime_error>(row.failure));
    else
        EXPECT_FALSE(failure);
    EXPECT_EQ(runner.cancelled(), row.cancelled);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RunnerEndingTest,
    testing::Values(Ending{"EndOfStreamIsSuccess", Act::Nothing, Act::Nothing, Ending::Never, "",
                           false},
                    Ending{"AFailureEndsTheRender", Act::Fail, Act::WaitForStop, Ending::Never,
                           "source failed on frame 2", false},
                    Ending{"TheFirstFailureWinsOverALateOne", Act::Fail, Act::FailAfterStop,
                           Ending::Never, "source failed on frame 2", false},
                    Ending{"ACancelOutranksALateFailure", Act::FailAfterStop, Act::FailAfterStop,
                           Ending::WhenAArrived, "", true},
                    Ending{"ACancelOutranksAnEarlierFailure", Act::Fail, Act::WaitForTest,
                           Ending::AfterTheStop, "", true},
                    Ending{"ACancelWhileAllRunIsCancelled", Act::WaitForStop, Act::WaitForStop,
                           Ending::WhenAArrived, "", true}),
    [](const testing::TestParamInfo<Ending>& info) { return info.param.name; });

namespace {

// Where a cancel finds a render of source, two boundaries and a sink.
struct Blocked {
    const char* name;
    Act source;
    Act sink;
};

class RunnerCancelTest : public testing::TestWithParam<Blocked> {};

} // namespace

TEST_P(RunnerCancelTest, ACancelEndsTheRenderWhereverItWaits) {
    const Blocked& row = GetParam();
    Runner runner;
    FakeVideo source(1000, runner.stop());
    source.script.what = row.source;
    source.script.at = 3;
    FakeSink sink(runner.stop());
    sink.script.what = row.sink;
    sink.script.at = 0;
    runner.connect(runner.boundary(runner.boundary(source, 2), 2), sink);
    std::thread canceller([&] {
        (row.source != Act::Nothing ? source.script : sink.script).arrived.wait();
        runner.cancel();
    });
    EXPECT_THAT([&] { runner.run(); }, FailedWith<Cancelled>("Render cancelled"));
    canceller.join();
    EXPECT_EQ(sink.closed, 0);
    EXPECT_LE(source.pulled, 7);
}

INSTANTIATE_TEST_SUITE_P(
    Table, RunnerCancelTest,
    testing::Values(
        // The boundaries downstream wait on empty queues.
        Blocked{"InTheSource", Act::WaitForStop, Act::Nothing},
        // The boundaries upstream wait on full queues.
        Blocked{"InTheSink", Act::Nothing, Act::WaitForStop},
        // A stage that does not heed the stop still ends the render once it returns.
        Blocked{"InASourceThatFailsAfterTheStop", Act::FailAfterStop, Act::Nothing}),
    [](const testing::TestParamInfo<Blocked>& info) { return info.param.name; });
