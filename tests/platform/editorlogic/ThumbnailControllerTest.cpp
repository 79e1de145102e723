#include "platform/editorlogic/ThumbnailController.h"

#include "platform/av/MediaError.h"
#include "platform/editorlogic/ExecutorFactory.h"
#include "platform/editorlogic/FrameExtractor.h"
#include "platform/editorlogic/StreamProcessorFactory.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/foundation/CallLog.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;

namespace {

// The engine and the controllers a thumbnail controller's extractions run on.
struct Controllers {
    const EditorService::Testing::RunningEngine engine;
    Core::ExecutorFactory executors;
    Core::StreamProcessorFactory processors;
    Media::StreamProvider streams{&executors, &executors, &processors, &processors, 5000};
    Task::Controller tasks;
};

} // namespace

TEST(ThumbnailControllerTest, SharesItsExtractorAndReleasesItWhenDestroyed) {
    CallLog::clear();
    std::weak_ptr<Thumbnail::Extractor> watched;
    {
        const Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
        watched = controller.extractor();
        EXPECT_EQ(watched.use_count(), 1);
    }
    EXPECT_TRUE(watched.expired());
    const std::vector<std::string> expected{
        "Thumbnail::FrameExtractor::FrameExtractor", "Thumbnail::Controller::Controller",
        "Thumbnail::Controller::~Controller", "Thumbnail::FrameExtractor::~FrameExtractor"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST(ThumbnailControllerTest, ExtractionRunsAsATaskOfTheTaskController) {
    Controllers controllers;
    Task::Controller& tasks = controllers.tasks;
    std::promise<void> idle;
    std::atomic<int> busy{0};
    QObject::connect(
        &tasks, &Task::Controller::isBusy, &tasks, [&] { ++busy; }, Qt::DirectConnection);
    QObject::connect(
        &tasks, &Task::Controller::isIdle, &tasks, [&] { idle.set_value(); }, Qt::DirectConnection);
    QTemporaryDir directory;
    Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
    Thumbnail::Request request;
    request.path = QString::fromStdString(EditorService::Testing::mediaFixture("clip.webm"));
    request.output = directory.filePath("t.png");
    request.atMilliseconds = 1000;
    std::promise<std::pair<Thumbnail::Result, std::thread::id>> done;
    controller.extract(request, [&](const Thumbnail::Result& result, std::exception_ptr error) {
        EXPECT_FALSE(error);
        done.set_value({result, std::this_thread::get_id()});
    });
    auto result = done.get_future();
    ASSERT_EQ(result.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    const auto [taken, thread] = result.get();
    // The clip's video starts 3 ms into the file: its frames show at 3, 43, ... 963, 1003 ms.
    EXPECT_EQ(taken.frameMilliseconds, 963);
    EXPECT_NE(thread, std::this_thread::get_id());
    ASSERT_EQ(idle.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_EQ(busy.load(), 1);
    EXPECT_TRUE(QFile::exists(request.output));
}

TEST(ThumbnailControllerTest, AFailureReachesDoneInsteadOfAResult) {
    Controllers controllers;
    Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
    Thumbnail::Request request;
    request.path = QStringLiteral("/nonexistent/a.mp4");
    // A folder that takes the output: a missing one would fail before the input is read.
    const QTemporaryDir folder;
    request.output = folder.filePath(QStringLiteral("t.png"));
    std::promise<std::exception_ptr> failed;
    controller.extract(request, [&](const Thumbnail::Result&, std::exception_ptr error) {
        failed.set_value(std::move(error));
    });
    auto failure = failed.get_future();
    ASSERT_EQ(failure.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_THAT(failure.get(),
                FailedWith<Velmor::AV::MediaError>(
                    "Can not open media file: /nonexistent/a.mp4: No such file or directory"));
}

TEST(ThumbnailControllerTest, WithoutATaskControllerExtractionIsALogicError) {
    Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
    EXPECT_THAT(
        [&] { controller.extract({}, [](const Thumbnail::Result&, std::exception_ptr) {}); },
        FailedWith<std::logic_error>("Can not extract a thumbnail: no task controller runs"));
}

TEST(ThumbnailControllerTest, InstanceIsTheLastControllerStillAlive) {
    EXPECT_EQ(Thumbnail::Controller::instance(), nullptr);
    {
        const Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
        EXPECT_EQ(Thumbnail::Controller::instance(), &controller);
    }
    EXPECT_EQ(Thumbnail::Controller::instance(), nullptr);
}

TEST(ThumbnailControllerTest, AnExtractionStillQueuedWhenTheControllerGoesEndsCancelledUnwritten) {
    Task::Controller tasks;
    std::promise<void> idle;
    QObject::connect(
        &tasks, &Task::Controller::isIdle, &tasks, [&] { idle.set_value(); }, Qt::DirectConnection);
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    tasks.submit([&started, released] {
        started.set_value();
        released.wait();
    });
    ASSERT_EQ(started.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    QTemporaryDir directory;
    Thumbnail::Request request;
    request.path = QString::fromStdString(EditorService::Testing::mediaFixture("clip.webm"));
    request.output = directory.filePath("t.png");
    std::vector<std::exception_ptr> failures;
    std::thread::id calledOn;
    {
        Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
        controller.extract(request, [&](const Thumbnail::Result&, std::exception_ptr error) {
            failures.push_back(error);
            calledOn = std::this_thread::get_id();
        });
    }
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_THAT(failures.front(), FailedWith<Thumbnail::ThumbnailCancelled>(
                                      "Thumbnail cancelled: " + request.output.toStdString()));
    EXPECT_EQ(calledOn, std::this_thread::get_id());
    // The extraction's turn comes after the controller went: it finds nothing to do.
    release.set_value();
    ASSERT_EQ(idle.get_future().wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_EQ(failures.size(), 1u);
    EXPECT_FALSE(QFile::exists(request.output));
}

TEST(ThumbnailControllerTest, AnExtractionNoLongerWantedWritesNothingAndEndsCancelled) {
    Controllers controllers;
    QTemporaryDir directory;
    Thumbnail::Controller controller(std::make_shared<Thumbnail::FrameExtractor>());
    Thumbnail::Request request;
    request.path = QString::fromStdString(EditorService::Testing::mediaFixture("clip.webm"));
    request.output = directory.filePath("t.png");
    std::promise<std::exception_ptr> failed;
    controller.extract(
        request,
        // Moved, so that the failure is freed on this thread: ThreadSanitizer does not see
        // libstdc++'s own count of its references.
        [&](const Thumbnail::Result&, std::exception_ptr error) {
            failed.set_value(std::move(error));
        },
        [] { return false; });
    auto failure = failed.get_future();
    ASSERT_EQ(failure.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_THAT(failure.get(), FailedWith<Thumbnail::ThumbnailCancelled>(
                                   "Thumbnail cancelled: " + request.output.toStdString()));
    EXPECT_FALSE(QFile::exists(request.output));
}
