#include "service/services/LimitedResourceUseFor.h"

#include "tests/support/DrainMainThread.h"
#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>
#include <map>
#include <mutex>
#include <thread>

using EditorService::Testing::drainMainThread;
using EditorService::Testing::spinUntil;
using Velmor::rx::LimitedResource;
using json = nlohmann::json;
using Job = std::function<rxcpp::observable<int>()>;

namespace {

// What the merged stream delivered.
struct Merged {
    std::mutex mutex;
    std::vector<json> values;
    std::vector<std::thread::id> threads;
    std::exception_ptr error;
    int ends = 0;
    rxcpp::composite_subscription lifetime;

    std::vector<json> received() {
        std::lock_guard<std::mutex> lock(mutex);
        return values;
    }
    int endCount() {
        std::lock_guard<std::mutex> lock(mutex);
        return ends;
    }
    std::exception_ptr failure() {
        std::lock_guard<std::mutex> lock(mutex);
        return error;
    }
};

std::shared_ptr<Merged> subscribe(const rxcpp::observable<json>& merged) {
    auto outcome = std::make_shared<Merged>();
    merged.subscribe(
        outcome->lifetime,
        [outcome](const json& value) {
            std::lock_guard<std::mutex> lock(outcome->mutex);
            outcome->values.push_back(value);
            outcome->threads.push_back(std::this_thread::get_id());
        },
        [outcome](std::exception_ptr error) {
            std::lock_guard<std::mutex> lock(outcome->mutex);
            outcome->error = error;
            ++outcome->ends;
        },
        [outcome] {
            std::lock_guard<std::mutex> lock(outcome->mutex);
            ++outcome->ends;
        });
    return outcome;
}

// Starts of commands, in order; each command's stream is a subject the test drives.
struct Starts {
    std::mutex mutex;
    std::vector<int> started;
    std::map<int, rxcpp::subjects::subject<json>> streams;

    rxcpp::subjects::subject<json> streamOf(int command) {
        std::lock_guard<std::mutex> lock(mutex);
        return streams.at(command);
    }
    std::vector<int> list() {
        std::lock_guard<std::mutex> lock(mutex);
        return started;
    }
};

// A start that records the command and gives a stream the test ends. It holds the record
// weakly, since the record holds the streams.
auto recordingStart(const std::shared_ptr<Starts>& record) {
    const std::weak_ptr<Starts> weakRecord = record;
    return [weakRecord](int command) -> rxcpp::observable<json> {
        rxcpp::subjects::subject<json> stream;
        const auto starts = weakRecord.lock();
        std::lock_guard<std::mutex> lock(starts->mutex);
        starts->started.push_back(command);
        starts->streams.emplace(command, stream);
        return stream.get_observable();
    };
}

// A start that sends the command's number at once and completes.
auto immediateStart() {
    return [](int command) -> rxcpp::observable<json> {
        return rxcpp::observable<>::just(json(command)).as_dynamic();
    };
}

// A limiter whose queue the test serves itself: made without a limit, so that nothing of its
// own listens to the queue, and then given one.
std::unique_ptr<LimitedResource> queueServedByTheTest() {
    auto resource = std::make_unique<LimitedResource>(0);
    resource->limit = 1;
    return resource;
}

std::shared_ptr<std::vector<Job>> collectJobs(LimitedResource& resource) {
    auto jobs = std::make_shared<std::vector<Job>>();
    resource.jobQueue.get_observable().subscribe([jobs](const Job& job) { jobs->push_back(job); },
                                                 [](std::exception_ptr) {});
    return jobs;
}

TEST(LimitedResourceUseForTest, WithoutALimitNoJobIsQueuedAndEachCommandStartsAsItArrives) {
    LimitedResource resource(0);
    const auto jobs = collectJobs(resource);
    const auto starts = std::make_shared<Starts>();
    rxcpp::subjects::subject<int> commands;
    const auto merged =
        subscribe(resource.useFor(recordingStart(starts))(commands.get_observable()));
    commands.get_subscriber().on_next(1);
    EXPECT_EQ(starts->list(), std::vector<int>{1});
    commands.get_subscriber().on_next(2);
    EXPECT_EQ(starts->list(), (std::vector<int>{1, 2}));
    EXPECT_TRUE(jobs->empty());
    commands.get_subscriber().on_completed();
    starts->streamOf(2).get_subscriber().on_next(json("two"));
    starts->streamOf(2).get_subscriber().on_completed();
    EXPECT_EQ(merged->endCount(), 0);
    starts->streamOf(1).get_subscriber().on_completed();
    EXPECT_EQ(merged->received(), std::vector<json>{"two"});
    EXPECT_EQ(merged->endCount(), 1);
}

TEST(LimitedResourceUseForTest, WithALimitEachCommandBecomesOneJobAndStartsOnlyWhenItIsCalled) {
    const auto resource = queueServedByTheTest();
    const auto jobs = collectJobs(*resource);
    const auto starts = std::make_shared<Starts>();
    rxcpp::subjects::subject<int> commands;
    const auto merged =
        subscribe(resource->useFor(recordingStart(starts))(commands.get_observable()));
    commands.get_subscriber().on_next(1);
    commands.get_subscriber().on_next(2);
    commands.get_subscriber().on_completed();
    ASSERT_EQ(jobs->size(), 2u);
    EXPECT_TRUE(starts->list().empty());
    jobs->at(1)();
    jobs->at(0)();
    EXPECT_EQ(starts->list(), (std::vector<int>{2, 1}));
    starts->streamOf(1).get_subscriber().on_next(json(1));
    starts->streamOf(1).get_subscriber().on_completed();
    starts->streamOf(2).get_subscriber().on_completed();
    EXPECT_EQ(merged->received(), std::vector<json>{1});
    EXPECT_EQ(merged->endCount(), 1);
}

TEST(LimitedResourceUseForTest, JobEndsWhenTheCommandEndsWithOneNumberPerValue) {
    const auto resource = queueServedByTheTest();
    const auto jobs = collectJobs(*resource);
    const auto starts = std::make_shared<Starts>();
    rxcpp::subjects::subject<int> commands;
    subscribe(resource->useFor(recordingStart(starts))(commands.get_observable()));
    commands.get_subscriber().on_next(1);
    ASSERT_EQ(jobs->size(), 1u);
    std::vector<int> numbers;
    bool ended = false;
    jobs->front()().subscribe([&](int number) { numbers.push_back(number); },
                              [](std::exception_ptr) { FAIL() << "no error expected"; },
                              [&] { ended = true; });
    starts->streamOf(1).get_subscriber().on_next(json("x"));
    starts->streamOf(1).get_subscriber().on_next(json("y"));
    EXPECT_FALSE(ended);
    starts->streamOf(1).get_subscriber().on_completed();
    EXPECT_TRUE(ended);
    EXPECT_EQ(numbers, (std::vector<int>{0, 0}));
}

TEST(LimitedResourceUseForTest, JobStartedInsideItsOwnQueueingLosesNoValue) {
    auto resource = queueServedByTheTest();
    resource->jobQueue.get_observable().subscribe([](const Job& job) { job(); },
                                                  [](std::exception_ptr) {});
    rxcpp::subjects::subject<int> commands;
    const auto merged = subscribe(resource->useFor(immediateStart())(commands.get_observable()));
    commands.get_subscriber().on_next(1);
    commands.get_subscriber().on_next(2);
    commands.get_subscriber().on_completed();
    EXPECT_EQ(merged->received(), (std::vector<json>{1, 2}));
    EXPECT_EQ(merged->endCount(), 1);
}

TEST(LimitedResourceUseForTest, JobStartedOnAnotherThreadDeliversThereAndLosesNoValue) {
    const auto resource = queueServedByTheTest();
    const auto jobs = collectJobs(*resource);
    rxcpp::subjects::subject<int> commands;
    const auto merged = subscribe(resource->useFor(immediateStart())(commands.get_observable()));
    commands.get_subscriber().on_next(7);
    commands.get_subscriber().on_completed();
    ASSERT_EQ(jobs->size(), 1u);
    std::thread::id worker;
    std::thread([&] {
        worker = std::this_thread::get_id();
        jobs->front()();
    }).join();
    EXPECT_EQ(merged->received(), std::vector<json>{7});
    ASSERT_EQ(merged->threads.size(), 1u);
    EXPECT_EQ(merged->threads.front(), worker);
    EXPECT_EQ(merged->endCount(), 1);
}

TEST(LimitedResourceUseForTest, CommandFromAnotherThreadToAQueueServedElsewhereLosesNoValue) {
    // This queue starts each job the moment it is queued, as a limiter on another thread might.
    const auto resource = queueServedByTheTest();
    resource->jobQueue.get_observable().subscribe([](const Job& job) { job(); },
                                                  [](std::exception_ptr) {});
    rxcpp::subjects::subject<int> commands;
    const auto merged = subscribe(resource->useFor(immediateStart())(commands.get_observable()));
    std::thread([&] {
        commands.get_subscriber().on_next(3);
        commands.get_subscriber().on_completed();
    }).join();
    EXPECT_EQ(merged->received(), std::vector<json>{3});
    EXPECT_EQ(merged->endCount(), 1);
}

TEST(LimitedResourceUseForTest, ThrowingStartBecomesTheErrorOfItsJobAndOfTheStreamAsItIs) {
    const auto failure = std::make_exception_ptr(std::runtime_error("can't start"));
    const auto resource = queueServedByTheTest();
    const auto jobs = collectJobs(*resource);
    rxcpp::subjects::subject<int> commands;
    const auto merged = subscribe(resource->useFor([failure](int) -> rxcpp::observable<json> {
        std::rethrow_exception(failure);
    })(commands.get_observable()));
    commands.get_subscriber().on_next(1);
    ASSERT_EQ(jobs->size(), 1u);
    std::exception_ptr jobError;
    rxcpp::observable<int> job;
    ASSERT_NO_THROW(job = jobs->front()());
    job.subscribe([](int) {}, [&](std::exception_ptr error) { jobError = error; });
    EXPECT_TRUE(jobError == failure);
    EXPECT_TRUE(merged->failure() == failure);
    EXPECT_EQ(merged->endCount(), 1);
}

TEST(LimitedResourceUseForTest, FailingCommandEndsTheStreamWithItsExceptionAndIsNoLongerMerged) {
    const auto failure = std::make_exception_ptr(std::runtime_error("failed"));
    const auto resource = queueServedByTheTest();
    const auto jobs = collectJobs(*resource);
    const auto starts = std::make_shared<Starts>();
    rxcpp::subjects::subject<int> commands;
    const auto merged =
        subscribe(resource->useFor(recordingStart(starts))(commands.get_observable()));
    commands.get_subscriber().on_next(1);
    commands.get_subscriber().on_next(2);
    jobs->at(0)();
    jobs->at(1)();
    starts->streamOf(2).get_subscriber().on_error(failure);
    EXPECT_TRUE(merged->failure() == failure);
    EXPECT_FALSE(commands.has_observers());
    // The other command runs on: its subscription belongs to its own subject.
    EXPECT_TRUE(starts->streamOf(1).has_observers());
    starts->streamOf(1).get_subscriber().on_next(json("late"));
    EXPECT_TRUE(merged->received().empty());
    EXPECT_EQ(merged->endCount(), 1);
}

TEST(LimitedResourceUseForTest, CommandArrivingAfterTheLimiterIsGoneIsHarmless) {
    auto resource = queueServedByTheTest();
    const auto jobs = collectJobs(*resource);
    rxcpp::subjects::subject<int> commands;
    const auto merge = resource->useFor(immediateStart());
    const auto merged = subscribe(merge(commands.get_observable()));
    resource.reset();
    commands.get_subscriber().on_next(3);
    ASSERT_EQ(jobs->size(), 1u);
    jobs->front()();
    EXPECT_EQ(merged->received(), std::vector<json>{3});
}

TEST(LimitedResourceUseForTest, RealLimiterRunsOneCommandAtATime) {
    LimitedResource resource(1);
    const auto starts = std::make_shared<Starts>();
    rxcpp::subjects::subject<int> commands;
    const auto merged =
        subscribe(resource.useFor(recordingStart(starts))(commands.get_observable()));
    commands.get_subscriber().on_next(1);
    commands.get_subscriber().on_next(2);
    commands.get_subscriber().on_completed();
    ASSERT_TRUE(spinUntil([starts] { return !starts->list().empty(); }));
    drainMainThread();
    EXPECT_EQ(starts->list(), std::vector<int>{1});
    starts->streamOf(1).get_subscriber().on_completed();
    ASSERT_TRUE(spinUntil([starts] { return starts->list().size() == 2; }));
    starts->streamOf(2).get_subscriber().on_next(json(2));
    starts->streamOf(2).get_subscriber().on_completed();
    EXPECT_EQ(merged->received(), std::vector<json>{2});
    EXPECT_EQ(merged->endCount(), 1);
}

// The script service's chain around the limiter: the finally alone keeps it alive.
rxcpp::observable<json> keptAlive(std::shared_ptr<LimitedResource> resource,
                                  const std::shared_ptr<Starts>& starts,
                                  const rxcpp::observable<int>& commands) {
    return resource->useFor(recordingStart(starts))(commands).finally([resource] {}).as_dynamic();
}

TEST(LimitedResourceUseForTest, UnsubscribingLetsGoOfTheLimiterWithAJobRunningAndOneQueued) {
    auto resource = std::make_shared<LimitedResource>(1);
    const std::weak_ptr<LimitedResource> watch = resource;
    const auto starts = std::make_shared<Starts>();
    rxcpp::subjects::subject<int> commands;
    const auto merged =
        subscribe(keptAlive(std::move(resource), starts, commands.get_observable()));
    commands.get_subscriber().on_next(1);
    commands.get_subscriber().on_next(2);
    ASSERT_TRUE(spinUntil([starts] { return !starts->list().empty(); }));
    EXPECT_FALSE(watch.expired());
    merged->lifetime.unsubscribe();
    EXPECT_TRUE(watch.expired());
    EXPECT_FALSE(commands.has_observers());
    starts->streamOf(1).get_subscriber().on_next(json(1));
    starts->streamOf(1).get_subscriber().on_completed();
    drainMainThread();
    EXPECT_TRUE(merged->received().empty());
    EXPECT_EQ(merged->endCount(), 0);
}

TEST(LimitedResourceUseForTest, CompletionLetsGoOfTheLimiter) {
    auto resource = std::make_shared<LimitedResource>(2);
    const std::weak_ptr<LimitedResource> watch = resource;
    const auto starts = std::make_shared<Starts>();
    rxcpp::subjects::subject<int> commands;
    const auto merged =
        subscribe(keptAlive(std::move(resource), starts, commands.get_observable()));
    commands.get_subscriber().on_next(1);
    commands.get_subscriber().on_completed();
    ASSERT_TRUE(spinUntil([starts] { return !starts->list().empty(); }));
    EXPECT_FALSE(watch.expired());
    starts->streamOf(1).get_subscriber().on_completed();
    EXPECT_EQ(merged->endCount(), 1);
    EXPECT_TRUE(watch.expired());
}

} // namespace
