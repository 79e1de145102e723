#include "platform/rxapp/LimitedResource.h"

#include "platform/rxapp/RxApp.h"
#include "tests/support/EventLoop.h"

#include <QCoreApplication>
#include <QThread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>

using EditorService::Testing::spinFor;
using EditorService::Testing::spinUntil;
using testing::ElementsAre;
using testing::IsEmpty;
using Velmor::rx::LimitedResource;

namespace {

using Job = std::function<rxcpp::observable<int>()>;

// Jobs whose end the test decides: each writes down its start and runs until finish() or fail().
class Jobs {
public:
    Job make(const std::string& name) {
        rxcpp::subjects::subject<int> done;
        ends[name] = done;
        return [this, name, done] {
            started.push_back(name);
            return done.get_observable();
        };
    }

    void queue(LimitedResource& resource, const std::string& name) {
        resource.jobQueue.get_subscriber().on_next(make(name));
    }

    void finish(const std::string& name) { ends.at(name).get_subscriber().on_completed(); }

    void fail(const std::string& name) {
        ends.at(name).get_subscriber().on_error(std::make_exception_ptr(std::runtime_error(name)));
    }

    // Lets the main thread take every turn that is due, so nothing more starts unnoticed.
    void settle() { spinFor(std::chrono::milliseconds(20)); }

    std::vector<std::string> started;
    std::map<std::string, rxcpp::subjects::subject<int>> ends;
};

bool onMainThread() {
    return QThread::currentThread() == QCoreApplication::instance()->thread();
}

} // namespace

TEST(LimitedResourceTest, LimitBelowOneStoresTheLimitAndDoesNotListenToTheQueue) {
    LimitedResource zero(0);
    LimitedResource negative(-3);
    EXPECT_EQ(zero.limit, 0);
    EXPECT_EQ(negative.limit, -3);
    EXPECT_FALSE(zero.jobQueue.has_observers());
    EXPECT_FALSE(negative.jobQueue.has_observers());
}

TEST(LimitedResourceTest, LimitOfOneOrMoreListensToTheQueue) {
    LimitedResource one(1);
    LimitedResource three(3);
    EXPECT_EQ(one.limit, 1);
    EXPECT_EQ(three.limit, 3);
    EXPECT_TRUE(one.jobQueue.has_observers());
    EXPECT_TRUE(three.jobQueue.has_observers());
}

TEST(LimitedResourceTest, JobNeverStartsInsideTheOnNextThatQueuedIt) {
    LimitedResource resource(1);
    Jobs jobs;
    jobs.queue(resource, "a");
    EXPECT_THAT(jobs.started, IsEmpty());
    ASSERT_TRUE(spinUntil([&] { return !jobs.started.empty(); }));
    EXPECT_THAT(jobs.started, ElementsAre("a"));
}

TEST(LimitedResourceTest, JobsStartOnTheMainThread) {
    LimitedResource resource(2);
    std::atomic<bool> ran{false};
    bool onMain = false;
    std::thread queuer([&] {
        resource.jobQueue.get_subscriber().on_next([&] {
            onMain = onMainThread();
            ran = true;
            return rxcpp::observable<>::just(0);
        });
    });
    queuer.join();
    ASSERT_TRUE(spinUntil([&] { return ran.load(); }));
    EXPECT_TRUE(onMain);
}

TEST(LimitedResourceTest, LimitOfOneStartsEachJobWhenThePreviousHasEnded) {
    LimitedResource resource(1);
    Jobs jobs;
    for (const char* name : {"a", "b", "c"})
        jobs.queue(resource, name);
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 1; }));
    jobs.settle();
    EXPECT_THAT(jobs.started, ElementsAre("a"));
    jobs.finish("a");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 2; }));
    jobs.settle();
    EXPECT_THAT(jobs.started, ElementsAre("a", "b"));
    jobs.finish("b");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 3; }));
    EXPECT_THAT(jobs.started, ElementsAre("a", "b", "c"));
}

TEST(LimitedResourceTest, LimitOfThreeRunsThreeAtOnceAndStartsTheRestInQueueOrder) {
    LimitedResource resource(3);
    Jobs jobs;
    for (const char* name : {"a", "b", "c", "d", "e"})
        jobs.queue(resource, name);
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 3; }));
    jobs.settle();
    EXPECT_THAT(jobs.started, ElementsAre("a", "b", "c"));
    jobs.finish("b");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 4; }));
    jobs.settle();
    EXPECT_THAT(jobs.started, ElementsAre("a", "b", "c", "d"));
    jobs.fail("c");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 5; }));
    EXPECT_THAT(jobs.started, ElementsAre("a", "b", "c", "d", "e"));
}

TEST(LimitedResourceTest, FailedJobFreesItsPlace) {
    LimitedResource resource(1);
    Jobs jobs;
    jobs.queue(resource, "a");
    jobs.queue(resource, "b");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 1; }));
    jobs.fail("a");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 2; }));
    EXPECT_THAT(jobs.started, ElementsAre("a", "b"));
}

TEST(LimitedResourceTest, JobWhoseFunctionThrowsFreesItsPlace) {
    LimitedResource resource(1);
    Jobs jobs;
    resource.jobQueue.get_subscriber().on_next([&]() -> rxcpp::observable<int> {
        jobs.started.push_back("thrower");
        throw std::runtime_error("cannot start");
    });
    jobs.queue(resource, "next");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 2; }));
    EXPECT_THAT(jobs.started, ElementsAre("thrower", "next"));
}

TEST(LimitedResourceTest, JobThatCompletesAtOnceDoesNotStallTheQueue) {
    LimitedResource resource(1);
    std::vector<int> started;
    for (int i = 0; i < 3; ++i)
        resource.jobQueue.get_subscriber().on_next([&started, i] {
            started.push_back(i);
            return rxcpp::observable<>::create<int>(
                [](rxcpp::subscriber<int> s) { s.on_completed(); });
        });
    ASSERT_TRUE(spinUntil([&] { return started.size() == 3; }));
    EXPECT_THAT(started, ElementsAre(0, 1, 2));
}

TEST(LimitedResourceTest, HundredThousandJobsEndingInsideTheirStartAllRunInOneTurn) {
    constexpr int count = 100000;
    LimitedResource resource(1);
    int started = 0;
    for (int i = 0; i < count; ++i)
        resource.jobQueue.get_subscriber().on_next([&started] {
            ++started;
            return rxcpp::observable<>::just(0);
        });
    // Queued behind the first pump on the same main-thread queue: it runs after that one turn.
    int startedBeforeNextTurn = -1;
    RxApp::instance()->mainThread().create_coordinator().get_worker().schedule(
        [&](const rxcpp::schedulers::schedulable&) { startedBeforeNextTurn = started; });
    ASSERT_TRUE(spinUntil([&] { return startedBeforeNextTurn >= 0; }));
    EXPECT_EQ(startedBeforeNextTurn, count);
}

TEST(LimitedResourceTest, JobsQueuedFromSeveralThreadsAllRunWithinTheLimit) {
    constexpr int threads = 4;
    constexpr int perThread = 250;
    constexpr int limit = 3;
    LimitedResource resource(limit);
    std::atomic<int> running{0};
    std::atomic<int> maxRunning{0};
    std::atomic<int> finished{0};
    std::map<int, std::vector<int>> startOrder; // main thread only
    auto job = [&](int t, int i) -> Job {
        return [&, t, i] {
            startOrder[t].push_back(i);
            const int now = ++running;
            int seen = maxRunning.load();
            while (now > seen && !maxRunning.compare_exchange_weak(seen, now)) {
            }
            // The job ends on a thread of its own, as a service's work would, and stops counting
            // itself as running before it signals its end.
            return rxcpp::observable<>::create<int>([&](rxcpp::subscriber<int> s) {
                auto worker = rxcpp::schedulers::make_new_thread().create_worker();
                s.add(worker.get_subscription());
                worker.schedule([&, s](const rxcpp::schedulers::schedulable&) {
                    --running;
                    ++finished;
                    s.on_completed();
                });
            });
        };
    };
    std::vector<std::thread> queuers;
    for (int t = 0; t < threads; ++t)
        queuers.emplace_back([&, t] {
            for (int i = 0; i < perThread; ++i)
                resource.jobQueue.get_subscriber().on_next(job(t, i));
        });
    for (auto& q : queuers)
        q.join();
    ASSERT_TRUE(spinUntil([&] { return finished.load() == threads * perThread; }));
    EXPECT_LE(maxRunning.load(), limit);
    EXPECT_GE(maxRunning.load(), 1);
    for (const auto& [t, order] : startOrder) {
        ASSERT_EQ(order.size(), std::size_t(perThread));
        for (int i = 0; i < perThread; ++i)
            ASSERT_EQ(order[i], i) << "thread " << t;
    }
}

TEST(LimitedResourceTest, DestructionDropsTheQueuedJobsWhichNeverStart) {
    Jobs jobs;
    auto kept = std::make_shared<int>(0);
    std::weak_ptr<int> watch = kept;
    {
        LimitedResource resource(1);
        jobs.queue(resource, "a");
        ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 1; }));
        jobs.queue(resource, "b");
        resource.jobQueue.get_subscriber().on_next([kept] { return rxcpp::observable<>::just(0); });
    }
    kept.reset();
    EXPECT_TRUE(watch.expired());
    jobs.finish("a");
    jobs.settle();
    EXPECT_THAT(jobs.started, ElementsAre("a"));
}

TEST(LimitedResourceTest, DestructionBeforeTheFirstTurnStartsNothing) {
    Jobs jobs;
    {
        LimitedResource resource(2);
        jobs.queue(resource, "a");
    }
    jobs.settle();
    EXPECT_THAT(jobs.started, IsEmpty());
}

TEST(LimitedResourceTest, RunningJobEndingAfterDestructionIsHarmless) {
    Jobs jobs;
    auto resource = std::make_unique<LimitedResource>(2);
    jobs.queue(*resource, "a");
    jobs.queue(*resource, "b");
    ASSERT_TRUE(spinUntil([&] { return jobs.started.size() == 2; }));
    std::thread destroyer([&] { resource.reset(); });
    destroyer.join();
    std::thread finisher([&] {
        jobs.finish("a");
        jobs.fail("b");
    });
    finisher.join();
    jobs.settle();
    EXPECT_THAT(jobs.started, ElementsAre("a", "b"));
}

TEST(LimitedResourceTest, JobQueuedByARunningJobStartsAfterThatJobsStartReturned) {
    LimitedResource resource(2);
    std::vector<std::string> order;
    resource.jobQueue.get_subscriber().on_next([&] {
        order.push_back("first starts");
        resource.jobQueue.get_subscriber().on_next([&] {
            order.push_back("second starts");
            return rxcpp::observable<>::just(0);
        });
        order.push_back("first queued second");
        return rxcpp::observable<>::just(0);
    });
    ASSERT_TRUE(spinUntil([&] { return order.size() == 3; }));
    EXPECT_THAT(order, ElementsAre("first starts", "first queued second", "second starts"));
}
