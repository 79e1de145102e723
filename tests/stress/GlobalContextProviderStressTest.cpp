#include "service/contexts/GlobalContextProvider.h"

#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/foundation/CallLog.h"
#include "platform/rxapp/LimitedResource.h"
#include "tests/stress/StressFixture.h"

#include <QObject>
#include <algorithm>
#include <future>
#include <thread>

using namespace EditorService;
using namespace EditorService::Testing;
using Velmor::Testing::CallLog;

namespace {

class GlobalContextProviderStressTest : public StressFixture {
protected:
    static long countOf(const std::string& entry) {
        const auto entries = CallLog::entries();
        return long(std::count(entries.begin(), entries.end(), entry));
    }
};

TEST_F(GlobalContextProviderStressTest, SixteenThreadsRequiringAtOnceBuildEachContextOnce) {
    using Context = GlobalContextProvider;
    const QFlags<Context::GlobalContext> masks[] = {Context::Engine,
                                                    Context::Media,
                                                    Context::Render,
                                                    Context::Content,
                                                    Context::Engine | Context::Content,
                                                    Context::Media | Context::Render,
                                                    {},
                                                    Context::Engine | Context::Media
                                                        | Context::Render | Context::Content};
    CallLog::clear();
    {
        GlobalContextProvider provider(QStringList{applicationPath()});
        const int threads = 16;
        std::atomic<int> ready{0};
        std::vector<std::shared_ptr<Velmor::rx::LimitedResource>> resources(threads);
        std::vector<std::thread> workers;
        for (int thread = 0; thread < threads; ++thread) {
            workers.emplace_back([&, thread] {
                ++ready;
                while (ready.load() < threads)
                    std::this_thread::yield();
                if (thread % 2 == 0)
                    resources[std::size_t(thread)] = provider.resource(Context::RenderJobs);
                provider.require(masks[thread % 8]);
                if (thread % 2 == 1)
                    resources[std::size_t(thread)] = provider.resource(Context::RenderJobs);
            });
        }
        for (auto& worker : workers)
            worker.join();
        for (const auto& resource : resources)
            EXPECT_EQ(resource, resources.front());
        EXPECT_EQ(resources.front()->limit, 1);
        EXPECT_EQ(countOf("CoreManager::Initialize"), 1);
        EXPECT_EQ(countOf("Task::Controller::Controller"), 1);
        EXPECT_EQ(countOf("Resource::Controller::Controller"), 1);
        EXPECT_EQ(countOf("Thumbnail::Controller::Controller"), 1);
    }
    EXPECT_EQ(countOf("CoreManager::Uninitialize"), 1);
    EXPECT_EQ(GlobalContextProvider::instance(), nullptr);
}

// Says, on the main thread, that a controller's busy signal has been delivered there; the
// media context, connected before, has passed it on to the provider by then.
struct BusySeen {
    QObject receiver;
    std::atomic<int> task{0};
    std::atomic<int> file{0};
};

TEST_F(GlobalContextProviderStressTest,
       WaitForWorkersReturnsWhenWorkersOnOtherThreadsHaveAllGoneIdle) {
    GlobalContextProvider provider(QStringList{applicationPath()});
    provider.require(GlobalContextProvider::Media);
    Task::Controller* tasks = Task::Controller::instance();
    Media::FileController* files = Media::FileController::instance();
    ASSERT_NE(tasks, nullptr);
    ASSERT_NE(files, nullptr);
    BusySeen seen;
    QObject::connect(tasks, &Task::Controller::isBusy, &seen.receiver, [&seen] { ++seen.task; });
    QObject::connect(files, &Media::FileController::isBusy, &seen.receiver,
                     [&seen] { ++seen.file; });

    const int rounds = 20;
    const int submitters = 8;
    const int jobsEach = 6;
    for (int round = 1; round <= rounds; ++round) {
        std::promise<void> release;
        std::shared_future<void> released = release.get_future().share();
        auto finished = std::make_shared<std::atomic<int>>(0);
        std::vector<std::thread> workers;
        for (int submitter = 0; submitter < submitters; ++submitter) {
            workers.emplace_back([=] {
                for (int job = 0; job < jobsEach; ++job) {
                    auto work = [released, finished] {
                        released.wait();
                        ++*finished;
                    };
                    if ((submitter + job) % 2 == 0)
                        tasks->submit(work);
                    else
                        files->submit(work);
                }
            });
        }
        for (auto& worker : workers)
            worker.join();
        ASSERT_TRUE(spinUntil([&seen, round] {
            return seen.task.load() == round && seen.file.load() == round;
        })) << round;
        std::thread releaser([&release] { release.set_value(); });
        provider.waitForWorkers();
        releaser.join();
        EXPECT_EQ(finished->load(), submitters * jobsEach) << round;
    }
}

} // namespace
