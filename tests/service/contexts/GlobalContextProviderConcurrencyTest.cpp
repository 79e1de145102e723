#include "service/contexts/GlobalContextProvider.h"

#include "platform/editorlogic/TaskController.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/rxapp/LimitedResource.h"
#include "platform/rxapp/RxApp.h"
#include "tests/service/contexts/RuntimeFixture.h"

#include <QCoreApplication>
#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <optional>
#include <thread>

using EditorService::GlobalContextProvider;
using Velmor::Testing::Probe;

namespace {

using Names = std::vector<std::string>;
constexpr auto generously = std::chrono::seconds(60);

// Lets a group of threads go at once.
class StartLine {
public:
    explicit StartLine(int threads)
        : waiting(threads) {}
    void arriveAndWait() {
        std::unique_lock<std::mutex> lock(mutex);
        if (--waiting == 0) {
            go.notify_all();
            return;
        }
        go.wait(lock, [this] { return waiting == 0; });
    }

private:
    std::mutex mutex;
    std::condition_variable go;
    int waiting;
};

} // namespace

class GlobalContextProviderConcurrencyTest : public EditorService::Testing::RuntimeFixture {
protected:
    void SetUp() override {
        RuntimeFixture::SetUp();
        // The limiter schedules on the main thread's loop, which must be known first.
        RxApp::instance();
    }
};

TEST_F(GlobalContextProviderConcurrencyTest, SixteenThreadsRequiringAtOnceBuildEachContextOnce) {
    addPackage("Summer");
    std::optional<GlobalContextProvider> provider(std::in_place,
                                                  QStringList{"app", "--render-jobs=3"});
    const std::vector<std::function<void(GlobalContextProvider&)>> requests{
        [](GlobalContextProvider& p) { p.require(GlobalContextProvider::Engine); },
        [](GlobalContextProvider& p) { p.require(GlobalContextProvider::Media); },
        [](GlobalContextProvider& p) { p.require(GlobalContextProvider::Content); },
        [](GlobalContextProvider& p) { p.require(GlobalContextProvider::Render); },
        [](GlobalContextProvider& p) {
            p.require(GlobalContextProvider::Render | GlobalContextProvider::Content);
        },
        [](GlobalContextProvider& p) { p.requireAll(); },
        [](GlobalContextProvider& p) { p.require({}); },
        [](GlobalContextProvider&) {}};
    constexpr int threadCount = 16;
    StartLine start(threadCount);
    std::vector<std::shared_ptr<Velmor::rx::LimitedResource>> resources(threadCount);
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index) {
        threads.emplace_back([&, index] {
            start.arriveAndWait();
            if (index % 2 == 0)
                resources[index] = provider->resource(GlobalContextProvider::RenderJobs);
            requests[index % requests.size()](*provider);
            if (index % 2 == 1)
                resources[index] = provider->resource(GlobalContextProvider::RenderJobs);
        });
    }
    for (auto& thread : threads)
        thread.join();

    EXPECT_EQ(contextsBuilt(), (Names{"Engine", "Media", "Content", "Render"}));
    EXPECT_EQ(count("Package::ContentProvider::startLoading"), 1);
    EXPECT_EQ(count("Package::ContentProvider::loadingFinished(1)"), 1);
    for (const auto& resource : resources)
        EXPECT_EQ(resource, resources.front());
    EXPECT_EQ(resources.front()->limit, 3);

    provider.reset();
    EXPECT_EQ(contextsDestroyed(), (Names{"Content", "Render", "Media", "Engine"}));
}

TEST_F(GlobalContextProviderConcurrencyTest, ALongStartBlocksEveryOtherCaller) {
    GlobalContextProvider provider({"app"});
    std::promise<void> release;
    auto released = release.get_future().share();
    std::promise<void> loading;
    Probe::onNext("Package::ContentProvider::load", [&loading, released] {
        loading.set_value();
        released.wait();
    });
    std::thread builder([&provider] { provider.require(GlobalContextProvider::Content); });
    ASSERT_EQ(loading.get_future().wait_for(generously), std::future_status::ready);

    std::atomic<bool> engineAnswered{false};
    std::atomic<bool> resourceAnswered{false};
    std::thread engineCaller([&] {
        provider.require(GlobalContextProvider::Engine);
        engineAnswered = true;
    });
    std::thread resourceCaller([&] {
        provider.resource(GlobalContextProvider::RenderJobs);
        resourceAnswered = true;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(engineAnswered.load());
    EXPECT_FALSE(resourceAnswered.load());
    release.set_value();
    builder.join();
    engineCaller.join();
    resourceCaller.join();
    EXPECT_EQ(contextsBuilt(), (Names{"Engine", "Media", "Content"}));
}

TEST_F(GlobalContextProviderConcurrencyTest,
       ARequireFromAnotherThreadWaitsWhileWaitForWorkersSpins) {
    GlobalContextProvider provider({"app"});
    provider.require(GlobalContextProvider::Media);
    Task::Controller* task = Task::Controller::instance();
    emit task->isBusy();

    std::atomic<bool> requireReturned{false};
    std::atomic<bool> requireReturnedBeforeIdle{false};
    std::thread caller;
    std::thread worker;
    // Runs inside the wait's own loop, so the other threads start while the wait holds the lock.
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [&] {
            caller = std::thread([&] {
                provider.require(GlobalContextProvider::Render);
                requireReturned = true;
            });
            worker = std::thread([&] {
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
                requireReturnedBeforeIdle = requireReturned.load();
                emit task->isIdle();
            });
        },
        Qt::QueuedConnection);
    provider.waitForWorkers();
    ASSERT_TRUE(worker.joinable());
    worker.join();
    caller.join();
    EXPECT_FALSE(requireReturnedBeforeIdle.load());
    EXPECT_TRUE(requireReturned.load());
    EXPECT_EQ(contextsBuilt(), (Names{"Engine", "Media", "Content", "Render"}));
}
