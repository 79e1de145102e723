#include "service/contexts/MediaContext.h"

#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "tests/service/contexts/RuntimeFixture.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"

#include <QThread>
#include <future>
#include <optional>
#include <stdexcept>
#include <type_traits>

using EditorService::AbstractContext;
using EditorService::MediaContext;
using EditorService::Testing::FailedWith;
using EditorService::Testing::spinUntil;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

namespace {

// The worker tokens a context passed on, with the thread each was emitted on.
struct Heard {
    std::vector<std::string> names;
    std::vector<void*> workers;
    std::vector<QThread*> threads;

    void listenTo(AbstractContext& context) {
        QObject::connect(&context, &AbstractContext::becameBusy, &context,
                         [this](void* worker) { note("busy", worker); });
        QObject::connect(&context, &AbstractContext::becameIdle, &context,
                         [this](void* worker) { note("idle", worker); });
    }
    void note(const std::string& name, void* worker) {
        names.push_back(name);
        workers.push_back(worker);
        threads.push_back(QThread::currentThread());
    }
};

const std::vector<std::string> fieldsBuilt{"Connection::Synchronizer::Synchronizer",
                                           "Core::ExecutorFactory::ExecutorFactory",
                                           "Core::StreamProcessorFactory::StreamProcessorFactory",
                                           "Task::Controller::Controller",
                                           "Media::FileController::FileController",
                                           "Media::SourceController::SourceController",
                                           "Media::StreamProvider::StreamProvider(5000)"};

} // namespace

class MediaContextTest : public EditorService::Testing::RuntimeFixture {};

TEST_F(MediaContextTest, HasOneCommandLineOptionCacheTtl) {
    const auto options = MediaContext::commandLineOptions();
    ASSERT_EQ(options.size(), 1);
    EXPECT_EQ(options[0].names(), QStringList{"cache-ttl"});
    EXPECT_EQ(options[0].valueName(), "time in msec");
    EXPECT_EQ(options[0].defaultValues(), QStringList{"5000"});
    EXPECT_EQ(options[0].description(), "Lifetime of a decoded stream cache");
}

TEST_F(MediaContextTest, IsAContextWithoutAMetaObjectOfItsOwn) {
    EXPECT_TRUE((std::is_base_of_v<AbstractContext, MediaContext>));
    const MediaContext context({"app"});
    EXPECT_EQ(context.metaObject(), &AbstractContext::staticMetaObject);
    EXPECT_EQ(context.parent(), nullptr);
}

TEST_F(MediaContextTest, BuildsItsSevenFieldsInOrderAndTearsThemDownInReverse) {
    std::optional<MediaContext> context(std::in_place, QStringList{"app"});
    EXPECT_EQ(CallLog::entries(), fieldsBuilt);
    CallLog::clear();
    context.reset();
    const std::vector<std::string> expected{"Media::StreamProvider::~StreamProvider",
                                            "Media::SourceController::~SourceController",
                                            "Media::FileController::~FileController",
                                            "Task::Controller::~Controller",
                                            "Core::StreamProcessorFactory::~StreamProcessorFactory",
                                            "Core::ExecutorFactory::~ExecutorFactory",
                                            "Connection::Synchronizer::~Synchronizer"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(MediaContextTest, AFieldConstructorThatThrowsUnwindsTheFieldsBuiltSoFar) {
    Probe::failNext("Media::FileController::FileController");
    EXPECT_THAT([&] { const MediaContext context({"app"}); },
                FailedWith<std::runtime_error>(
                    "Injected failure at Media::FileController::FileController"));
    const std::vector<std::string> expected{"Connection::Synchronizer::Synchronizer",
                                            "Core::ExecutorFactory::ExecutorFactory",
                                            "Core::StreamProcessorFactory::StreamProcessorFactory",
                                            "Task::Controller::Controller",
                                            "Task::Controller::~Controller",
                                            "Core::StreamProcessorFactory::~StreamProcessorFactory",
                                            "Core::ExecutorFactory::~ExecutorFactory",
                                            "Connection::Synchronizer::~Synchronizer"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(MediaContextTest, PassesTheControllersSignalsOnWithTheirAddressesAsTokens) {
    MediaContext context({"app"});
    Heard heard;
    heard.listenTo(context);
    auto* task = Task::Controller::instance();
    auto* file = Media::FileController::instance();
    ASSERT_NE(task, nullptr);
    ASSERT_NE(file, nullptr);
    emit task->isBusy();
    emit file->isBusy();
    emit file->isIdle();
    emit task->isIdle();
    EXPECT_EQ(heard.names, (std::vector<std::string>{"busy", "busy", "idle", "idle"}));
    EXPECT_EQ(heard.workers, (std::vector<void*>{task, file, file, task}));
}

TEST_F(MediaContextTest, SignalsFromTheControllersThreadsAreEmittedOnTheContextsThread) {
    MediaContext context({"app"});
    Heard heard;
    heard.listenTo(context);
    std::promise<QThread*> taskThread;
    std::promise<QThread*> fileThread;
    Task::Controller::instance()->submit([&] { taskThread.set_value(QThread::currentThread()); });
    Media::FileController::instance()->submit(
        [&] { fileThread.set_value(QThread::currentThread()); });
    ASSERT_TRUE(spinUntil([&] { return heard.names.size() == 4; }));
    EXPECT_NE(taskThread.get_future().get(), QThread::currentThread());
    EXPECT_NE(fileThread.get_future().get(), QThread::currentThread());
    for (QThread* thread : heard.threads)
        EXPECT_EQ(thread, QThread::currentThread());
    void* task = Task::Controller::instance();
    void* file = Media::FileController::instance();
    EXPECT_EQ(std::count(heard.workers.begin(), heard.workers.end(), task), 2);
    EXPECT_EQ(std::count(heard.workers.begin(), heard.workers.end(), file), 2);
}

TEST_F(MediaContextTest, TheTaskAndFileControllersAreTwoDistinctWorkers) {
    MediaContext context({"app"});
    Heard heard;
    heard.listenTo(context);
    emit Task::Controller::instance()->isBusy();
    emit Media::FileController::instance()->isBusy();
    ASSERT_EQ(heard.workers.size(), 2u);
    EXPECT_NE(heard.workers[0], heard.workers[1]);
}

struct CacheLifetime {
    const char* name;
    QStringList arguments;
    int expected;
};

class MediaContextCacheLifetimeTest : public MediaContextTest,
                                      public testing::WithParamInterface<CacheLifetime> {};

TEST_P(MediaContextCacheLifetimeTest, ReachesTheStreamProviderAsParsed) {
    const MediaContext context(GetParam().arguments);
    EXPECT_EQ(startingWith("Media::StreamProvider::StreamProvider("),
              std::vector<std::string>{"Media::StreamProvider::StreamProvider("
                                       + std::to_string(GetParam().expected) + ")"});
}

INSTANTIATE_TEST_SUITE_P(
    Values, MediaContextCacheLifetimeTest,
    testing::Values(CacheLifetime{"Absent", {"app"}, 5000},
                    CacheLifetime{"Number", {"app", "--cache-ttl=250"}, 250},
                    CacheLifetime{"SeparateValue", {"app", "--cache-ttl", "30"}, 30},
                    CacheLifetime{"Zero", {"app", "--cache-ttl=0"}, 0},
                    CacheLifetime{"Negative", {"app", "--cache-ttl=-7"}, -7},
                    CacheLifetime{"NotANumber", {"app", "--cache-ttl=soon"}, 0},
                    CacheLifetime{"Empty", {"app", "--cache-ttl="}, 0},
                    CacheLifetime{"AmongOtherOptions",
                                  {"app", "--hot-start", "--disable-plugin=Effects",
                                   "--cache-ttl=12", "--rj=2"},
                                  12}),
    [](const testing::TestParamInfo<CacheLifetime>& info) { return info.param.name; });
