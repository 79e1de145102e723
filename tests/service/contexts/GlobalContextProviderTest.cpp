#include "service/contexts/GlobalContextProvider.h"

#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/rxapp/LimitedResource.h"
#include "service/contexts/EngineContext.h"
#include "service/contexts/MediaContext.h"
#include "tests/service/contexts/RuntimeFixture.h"
#include "tests/support/FailedWith.h"

#include <QCoreApplication>
#include <QMetaEnum>
#include <atomic>
#include <functional>
#include <future>
#include <optional>
#include <stdexcept>
#include <thread>

using EditorService::GlobalContextProvider;
using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

using Names = std::vector<std::string>;
constexpr auto generously = std::chrono::seconds(60);

QStringList optionNames(const QCommandLineOption& option) {
    return option.names();
}

} // namespace

class GlobalContextProviderTest : public EditorService::Testing::RuntimeFixture {};

TEST_F(GlobalContextProviderTest, MetaObjectHasOneEnumeratorWithTheKeysInOrder) {
    const QMetaObject& meta = GlobalContextProvider::staticMetaObject;
    EXPECT_STREQ(meta.className(), "EditorService::GlobalContextProvider");
    EXPECT_EQ(meta.superClass(), &QObject::staticMetaObject);
    EXPECT_EQ(meta.methodCount() - meta.methodOffset(), 0);
    EXPECT_EQ(meta.propertyCount() - meta.propertyOffset(), 0);
    ASSERT_EQ(meta.enumeratorCount() - meta.enumeratorOffset(), 1);
    const QMetaEnum keys = meta.enumerator(meta.enumeratorOffset());
    EXPECT_STREQ(keys.name(), "GlobalContext");
    ASSERT_EQ(keys.keyCount(), 4);
    const char* names[] = {"Engine", "Media", "Render", "Content"};
    const int values[] = {1, 2, 4, 8};
    for (int index = 0; index < 4; ++index) {
        EXPECT_STREQ(keys.key(index), names[index]);
        EXPECT_EQ(keys.value(index), values[index]);
    }
    EXPECT_EQ(GlobalContextProvider::RenderJobs, 0);
}

TEST_F(GlobalContextProviderTest, OptionsListTheRuntimesOptionsInOrder) {
    const auto options = GlobalContextProvider::options();
    ASSERT_EQ(options.size(), 4);
    EXPECT_EQ(options[0].names(), QStringList{"hot-start"});
    EXPECT_EQ(options[0].valueName(), QString());
    EXPECT_TRUE(options[0].defaultValues().isEmpty());
    EXPECT_EQ(options[0].description(), "Initialize all resources first of all.");
    EXPECT_EQ(options[1].names(), (QStringList{"render-jobs", "rj"}));
    EXPECT_EQ(options[1].valueName(), "N");
    EXPECT_EQ(options[1].defaultValues(), QStringList{"1"});
    EXPECT_EQ(options[1].description(), "Allow N render jobs at once; 1 job with no arg.");
    EXPECT_EQ(optionNames(options[2]),
              optionNames(EditorService::EngineContext::commandLineOptions().at(0)));
    EXPECT_EQ(options[2].valueName(), "plugin name");
    EXPECT_EQ(optionNames(options[3]),
              optionNames(EditorService::MediaContext::commandLineOptions().at(0)));
    EXPECT_EQ(options[3].defaultValues(), QStringList{"5000"});
}

TEST_F(GlobalContextProviderTest, InstanceIsTheProviderOnlyWhileItLives) {
    EXPECT_EQ(GlobalContextProvider::instance(), nullptr);
    {
        GlobalContextProvider provider({"app"});
        EXPECT_EQ(GlobalContextProvider::instance(), &provider);
        EXPECT_EQ(provider.parent(), nullptr);
    }
    EXPECT_EQ(GlobalContextProvider::instance(), nullptr);
}

TEST_F(GlobalContextProviderTest, InstanceIsNullOnceTheDestructorHasBegun) {
    std::optional<GlobalContextProvider> provider(std::in_place, QStringList{"app"});
    provider->require(GlobalContextProvider::Engine);
    bool asked = false;
    GlobalContextProvider* seen = &*provider;
    Probe::onNext("CoreManager::Uninitialize", [&] {
        asked = true;
        seen = GlobalContextProvider::instance();
    });
    provider.reset();
    EXPECT_TRUE(asked);
    EXPECT_EQ(seen, nullptr);
}

TEST_F(GlobalContextProviderTest, WithoutHotStartTheConstructorBuildsNothing) {
    const GlobalContextProvider provider({"app", "--render-jobs=2"});
    EXPECT_TRUE(CallLog::entries().empty());
}

struct ConstructionOrder {
    const char* name;
    QStringList arguments;
    std::function<void(GlobalContextProvider&)> require;
    Names expected;
};

class GlobalContextProviderOrderTest : public GlobalContextProviderTest,
                                       public testing::WithParamInterface<ConstructionOrder> {};

TEST_P(GlobalContextProviderOrderTest, BuildsTheContextsInTheFixedOrder) {
    GlobalContextProvider provider(GetParam().arguments);
    GetParam().require(provider);
    EXPECT_EQ(contextsBuilt(), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Requests, GlobalContextProviderOrderTest,
    testing::Values(ConstructionOrder{"Engine",
                                      {"app"},
                                      [](GlobalContextProvider& p) {
                                          p.require(GlobalContextProvider::Engine);
                                      },
                                      {"Engine"}},
                    ConstructionOrder{
                        "Media",
                        {"app"},
                        [](GlobalContextProvider& p) { p.require(GlobalContextProvider::Media); },
                        {"Engine", "Media"}},
                    ConstructionOrder{
                        "Content",
                        {"app"},
                        [](GlobalContextProvider& p) { p.require(GlobalContextProvider::Content); },
                        {"Engine", "Media", "Content"}},
                    ConstructionOrder{
                        "Render",
                        {"app"},
                        [](GlobalContextProvider& p) { p.require(GlobalContextProvider::Render); },
                        {"Engine", "Media", "Content", "Render"}},
                    ConstructionOrder{"RequireAll",
                                      {"app"},
                                      [](GlobalContextProvider& p) { p.requireAll(); },
                                      {"Engine", "Media", "Content", "Render"}},
                    ConstructionOrder{"HotStart",
                                      {"app", "--hot-start"},
                                      [](GlobalContextProvider&) {},
                                      {"Engine", "Media", "Content", "Render"}},
                    ConstructionOrder{"ContentThenEngine",
                                      {"app"},
                                      [](GlobalContextProvider& p) {
                                          p.require(GlobalContextProvider::Content);
                                          p.require(GlobalContextProvider::Engine);
                                      },
                                      {"Engine", "Media", "Content"}}),
    [](const testing::TestParamInfo<ConstructionOrder>& info) { return info.param.name; });

TEST_F(GlobalContextProviderTest, RequireWithAnEmptyMaskBuildsNothing) {
    GlobalContextProvider provider({"app"});
    provider.require({});
    EXPECT_TRUE(CallLog::entries().empty());
}

TEST_F(GlobalContextProviderTest, AMaskBitThatBelongsToNoKeyIsIgnored) {
    GlobalContextProvider provider({"app"});
    provider.require(GlobalContextProvider::GlobalContexts(QFlag(16)));
    EXPECT_TRUE(CallLog::entries().empty());
    provider.require(GlobalContextProvider::GlobalContexts(QFlag(16 | 1)));
    EXPECT_EQ(contextsBuilt(), Names{"Engine"});
}

TEST_F(GlobalContextProviderTest, RequireOfRenderAndContentBuildsEachContextOnce) {
    GlobalContextProvider provider({"app"});
    provider.require(GlobalContextProvider::Render | GlobalContextProvider::Content);
    EXPECT_EQ(contextsBuilt(), (Names{"Engine", "Media", "Content", "Render"}));
    EXPECT_EQ(count("Package::ContentProvider::startLoading"), 1);
}

TEST_F(GlobalContextProviderTest, ASecondRequireOfABuiltContextReturnsWithNoSideEffect) {
    GlobalContextProvider provider({"app"});
    provider.require(GlobalContextProvider::Content);
    CallLog::clear();
    provider.require(GlobalContextProvider::Content);
    provider.require(GlobalContextProvider::Media | GlobalContextProvider::Engine);
    EXPECT_TRUE(CallLog::entries().empty());
}

TEST_F(GlobalContextProviderTest, DestroysTheContextsInDescendingKeyOrderWithTheEngineLast) {
    std::optional<GlobalContextProvider> provider(std::in_place, QStringList{"app"});
    provider->requireAll();
    CallLog::clear();
    provider.reset();
    EXPECT_EQ(contextsDestroyed(), (Names{"Content", "Render", "Media", "Engine"}));
    const auto entries = CallLog::entries();
    ASSERT_GE(entries.size(), 2u);
    EXPECT_EQ(Names(entries.end() - 2, entries.end()),
              (Names{"OglManager::Deinitialize", "CoreManager::Uninitialize"}));
}

TEST_F(GlobalContextProviderTest, DestructionTearsDownOnlyWhatWasBuilt) {
    std::optional<GlobalContextProvider> provider(std::in_place, QStringList{"app"});
    provider->require(GlobalContextProvider::Media);
    CallLog::clear();
    provider.reset();
    EXPECT_EQ(contextsDestroyed(), (Names{"Media", "Engine"}));
}

TEST_F(GlobalContextProviderTest, BuiltContextsAreNoneBeforeAnyRequire) {
    const GlobalContextProvider provider({"app"});
    EXPECT_EQ(provider.builtContexts(), GlobalContextProvider::GlobalContexts());
}

TEST_F(GlobalContextProviderTest, BuiltContextsAreTheOnesAskedForWithWhatTheyDependOn) {
    GlobalContextProvider provider({"app"});
    provider.require(GlobalContextProvider::Content);
    EXPECT_EQ(provider.builtContexts(), GlobalContextProvider::Engine | GlobalContextProvider::Media
                                            | GlobalContextProvider::Content);
}

TEST_F(GlobalContextProviderTest, BuiltContextsAfterAHotStartAreAllFour) {
    const GlobalContextProvider provider({"app", "--hot-start"});
    EXPECT_EQ(provider.builtContexts(), GlobalContextProvider::Engine | GlobalContextProvider::Media
                                            | GlobalContextProvider::Content
                                            | GlobalContextProvider::Render);
}

TEST_F(GlobalContextProviderTest, BuiltContextsLeaveOutAContextThatFailedToStart) {
    GlobalContextProvider provider({"app"});
    Probe::failNext("Composition::Controller::Controller");
    EXPECT_THROW(provider.requireAll(), std::runtime_error);
    EXPECT_EQ(provider.builtContexts(), GlobalContextProvider::Engine | GlobalContextProvider::Media
                                            | GlobalContextProvider::Content);
}

TEST_F(GlobalContextProviderTest, ResourceCalledTwiceReturnsTheSameObject) {
    const GlobalContextProvider provider({"app"});
    const auto first = provider.resource(GlobalContextProvider::RenderJobs);
    const auto second = provider.resource(GlobalContextProvider::RenderJobs);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first, second);
}

TEST_F(GlobalContextProviderTest, AnUnknownResourceThrowsInvalidArgumentAndStoresNothing) {
    GlobalContextProvider provider({"app"});
    const auto unknown = static_cast<GlobalContextProvider::Resource>(1);
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_THAT([&] { provider.resource(unknown); },
                    FailedWith<std::invalid_argument>("Unknown resource requested"));
    }
    // The lock was released: another thread gets through.
    std::thread other([&provider] { provider.require(GlobalContextProvider::Engine); });
    other.join();
    EXPECT_EQ(contextsBuilt(), Names{"Engine"});
}

struct RenderJobs {
    const char* name;
    QStringList arguments;
    int expected;
};

class GlobalContextProviderRenderJobsTest : public GlobalContextProviderTest,
                                            public testing::WithParamInterface<RenderJobs> {};

TEST_P(GlobalContextProviderRenderJobsTest, ReachTheLimitedResourceAsParsed) {
    const GlobalContextProvider provider(GetParam().arguments);
    EXPECT_EQ(provider.resource(GlobalContextProvider::RenderJobs)->limit, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, GlobalContextProviderRenderJobsTest,
    testing::Values(RenderJobs{"Absent", {"app"}, 1},
                    RenderJobs{"Number", {"app", "--render-jobs=3"}, 3},
                    RenderJobs{"Alias", {"app", "--rj=4"}, 4},
                    RenderJobs{"SeparateValue", {"app", "--rj", "5"}, 5},
                    RenderJobs{"NotANumber", {"app", "--render-jobs=many"}, 1},
                    RenderJobs{"Empty", {"app", "--render-jobs="}, 1},
                    RenderJobs{"WithoutValue", {"app", "--render-jobs"}, 1},
                    RenderJobs{"Zero", {"app", "--render-jobs=0"}, 0},
                    RenderJobs{"Negative", {"app", "--render-jobs=-2"}, -2},
                    RenderJobs{"AmongOtherOptions",
                               {"app", "--unknown", "--cache-ttl=5", "--disable-plugin=Effects",
                                "--rj=6", "positional"},
                               6}),
    [](const testing::TestParamInfo<RenderJobs>& info) { return info.param.name; });

TEST_F(GlobalContextProviderTest, UnknownOptionsAndBadValuesNeverFail) {
    GlobalContextProvider provider(
        {"app", "--bogus", "-xyz", "--render-jobs=x", "--cache-ttl=y", "--", "--hot-start"});
    EXPECT_TRUE(CallLog::entries().empty());
    provider.require(GlobalContextProvider::Media);
    EXPECT_EQ(provider.resource(GlobalContextProvider::RenderJobs)->limit, 1);
}

TEST_F(GlobalContextProviderTest,
       AContextConstructorThatThrowsStoresNothingAndKeepsItsDependencies) {
    GlobalContextProvider provider({"app"});
    Probe::failNext("Media::StreamProvider::StreamProvider");
    EXPECT_THAT([&] { provider.require(GlobalContextProvider::Content); },
                FailedWith<std::runtime_error>(
                    "Injected failure at Media::StreamProvider::StreamProvider"));
    EXPECT_EQ(contextsBuilt(), (Names{"Engine", "Media"}));
    EXPECT_EQ(count("CoreManager::Uninitialize"), 0);
    EXPECT_EQ(count("Resource::RedirectionTableHolder::RedirectionTableHolder"), 0);

    provider.require(GlobalContextProvider::Content);
    EXPECT_EQ(contextsBuilt(), (Names{"Engine", "Media", "Media", "Content"}));
    EXPECT_EQ(count("CoreManager::Initialize"), 1);
}

TEST_F(GlobalContextProviderTest, AFailedEngineIsInitialisedAgainByALaterRequire) {
    GlobalContextProvider provider({"app"});
    Probe::failNext("OglManager::Initialize");
    EXPECT_THROW(provider.require(GlobalContextProvider::Engine), std::runtime_error);
    EXPECT_EQ(count("CoreManager::Uninitialize"), 0);
    provider.require(GlobalContextProvider::Engine);
    EXPECT_EQ(count("CoreManager::Initialize"), 2);
}

TEST_F(GlobalContextProviderTest, TheLockIsReleasedWhenAContextConstructorThrows) {
    GlobalContextProvider provider({"app"});
    Probe::failNext("Composition::Controller::Controller");
    EXPECT_THROW(provider.requireAll(), std::runtime_error);
    std::thread other([&provider] { provider.require(GlobalContextProvider::Render); });
    other.join();
    EXPECT_EQ(count("Composition::Controller::Controller"), 1);
}

TEST_F(GlobalContextProviderTest, AFailedHotStartDestroysWhatWasBuiltAndLeavesTheConstructor) {
    Probe::failNext("Theme::ContentProvider::ContentProvider");
    EXPECT_THAT(
        [&] {
            GlobalContextProvider provider({"app", "--hot-start"});
        },
        FailedWith<std::runtime_error>(
            "Injected failure at Theme::ContentProvider::ContentProvider"));
    EXPECT_EQ(contextsBuilt(), (Names{"Engine", "Media", "Content"}));
    EXPECT_EQ(contextsDestroyed(), (Names{"Content", "Media", "Engine"}));
    // Only the destructor clears the instance, and it never ran.
    EXPECT_NE(GlobalContextProvider::instance(), nullptr);
    { const GlobalContextProvider next({"app"}); }
    EXPECT_EQ(GlobalContextProvider::instance(), nullptr);
}

TEST_F(GlobalContextProviderTest,
       HotStartReturnsOnlyWhenAllFourContextsAreUpAndTheContentHasLoaded) {
    addPackage("Summer");
    std::promise<void> release;
    auto released = release.get_future().share();
    std::promise<void> loading;
    Probe::onNext("Package::ContentProvider::load", [&loading, released] {
        loading.set_value();
        released.wait();
    });
    std::atomic<bool> constructed{false};
    Names builtWhenConstructed;
    std::thread host([&] {
        const GlobalContextProvider provider({"app", "--hot-start"});
        builtWhenConstructed = contextsBuilt();
        constructed = true;
    });
    ASSERT_EQ(loading.get_future().wait_for(generously), std::future_status::ready);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(constructed.load());
    release.set_value();
    host.join();
    EXPECT_EQ(builtWhenConstructed, (Names{"Engine", "Media", "Content", "Render"}));
    EXPECT_EQ(count("Package::ContentProvider::loadingFinished(1)"), 1);
}

// Busy tracking. The workers are the media context's task and file controllers.
class GlobalContextProviderWorkersTest : public GlobalContextProviderTest {
protected:
    void SetUp() override {
        GlobalContextProviderTest::SetUp();
        provider.emplace(QStringList{"app"});
        provider->require(GlobalContextProvider::Media);
        task = Task::Controller::instance();
        file = Media::FileController::instance();
        ASSERT_NE(task, nullptr);
        ASSERT_NE(file, nullptr);
    }
    void TearDown() override {
        provider.reset();
        GlobalContextProviderTest::TearDown();
    }

    bool waitSpins() {
        return spinsEventLoop([this] { provider->waitForWorkers(); });
    }

    std::optional<GlobalContextProvider> provider;
    Task::Controller* task = nullptr;
    Media::FileController* file = nullptr;
};

TEST_F(GlobalContextProviderWorkersTest, WaitWithNoBusyWorkerReturnsAtOnceWithoutSpinning) {
    EXPECT_FALSE(waitSpins());
}

TEST_F(GlobalContextProviderWorkersTest, AWorkerThatTurnsBusyTwiceIsInTheSetOnce) {
    emit task->isBusy();
    emit task->isBusy();
    emit task->isIdle();
    EXPECT_FALSE(waitSpins());
}

TEST_F(GlobalContextProviderWorkersTest, AnIdleSignalWithAnEmptySetChangesNothing) {
    emit file->isIdle();
    EXPECT_FALSE(waitSpins());
}

TEST_F(GlobalContextProviderWorkersTest, WaitReturnsOnlyAfterBothBusyWorkersHaveTurnedIdle) {
    emit task->isBusy();
    emit file->isBusy();
    // Connected after the media context, so it hears of the task's idle signal after it.
    QObject observer;
    std::atomic<bool> firstDelivered{false};
    QObject::connect(task, &Task::Controller::isIdle, &observer,
                     [&firstDelivered] { firstDelivered = true; });
    std::atomic<bool> secondSent{false};
    std::thread worker([&] {
        emit task->isIdle();
        while (!firstDelivered.load())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        secondSent = true;
        emit file->isIdle();
    });
    const bool spun = waitSpins();
    const bool secondWasSent = secondSent.load();
    worker.join();
    EXPECT_TRUE(spun);
    EXPECT_TRUE(firstDelivered.load());
    EXPECT_TRUE(secondWasSent);
}

TEST_F(GlobalContextProviderWorkersTest, AnIdleSignalOfAWorkerNotInTheSetWakesTheWaitWhichGoesOn) {
    emit task->isBusy();
    QObject observer;
    std::atomic<bool> strangerDelivered{false};
    QObject::connect(file, &Media::FileController::isIdle, &observer,
                     [&strangerDelivered] { strangerDelivered = true; });
    std::atomic<bool> busyOneSent{false};
    std::thread worker([&] {
        emit file->isIdle();
        while (!strangerDelivered.load())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        busyOneSent = true;
        emit task->isIdle();
    });
    provider->waitForWorkers();
    const bool busyOneWasSent = busyOneSent.load();
    worker.join();
    EXPECT_TRUE(strangerDelivered.load());
    EXPECT_TRUE(busyOneWasSent);
}

TEST_F(GlobalContextProviderWorkersTest,
       SignalsFromWorkerThreadsCountOnlyOnceTheProviderThreadSpins) {
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    std::atomic<bool> done{false};
    task->submit([&started, released, &done] {
        started.set_value();
        released.wait();
        done = true;
    });
    // isBusy went out on the controller's thread before the job began; it waits in the queue.
    ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    EXPECT_FALSE(waitSpins()); // and is delivered as this returns

    std::thread releaser([&release] {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        release.set_value();
    });
    EXPECT_TRUE(waitSpins());
    releaser.join();
    EXPECT_TRUE(done.load());
}

TEST_F(GlobalContextProviderWorkersTest, BothControllersWorkingOnTheirThreadsAreWaitedFor) {
    std::atomic<int> finished{0};
    std::promise<void> release;
    auto released = release.get_future().share();
    std::atomic<int> started{0};
    auto job = [&finished, &started, released] {
        ++started;
        released.wait();
        ++finished;
    };
    task->submit(job);
    file->submit(job);
    while (started.load() < 2)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    QCoreApplication::sendPostedEvents(); // deliver both busy signals
    std::thread releaser([&release] {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        release.set_value();
    });
    EXPECT_TRUE(waitSpins());
    releaser.join();
    EXPECT_EQ(finished.load(), 2);
}

TEST_F(GlobalContextProviderWorkersTest, ASignalEmittedWhileAContextIsBeingBuiltIsLost) {
    // While the media context is built its task controller reports work: the provider
    // connects to the context only once its constructor has returned.
    provider.reset();
    CallLog::clear();
    provider.emplace(QStringList{"app"});
    Probe::onNext("Media::StreamProvider::StreamProvider",
                  [] { emit Task::Controller::instance()->isBusy(); });
    provider->require(GlobalContextProvider::Media);
    EXPECT_FALSE(waitSpins());

    // The same signal once the context is built is tracked.
    task = Task::Controller::instance();
    emit task->isBusy();
    std::thread worker([this] { emit task->isIdle(); });
    EXPECT_TRUE(waitSpins());
    worker.join();
}
