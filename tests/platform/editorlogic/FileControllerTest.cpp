#include "platform/editorlogic/FileController.h"

#include "platform/av/MediaError.h"
#include "platform/editorlogic/ExecutorFactory.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"
#include "tests/support/Releaser.h"

#include <QFile>
#include <QTemporaryDir>
#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>

using EditorService::Testing::FailedWith;
using Velmor::Testing::CallLog;
using Velmor::Testing::Probe;

using EditorService::Testing::Releaser;

namespace {

constexpr auto generously = std::chrono::seconds(60);

} // namespace

class FileControllerTest : public testing::Test {
protected:
    void SetUp() override {
        Probe::clear();
        CallLog::clear();
    }

    Core::ExecutorFactory parsers;
};

TEST_F(FileControllerTest, KeepsTheParserCreatorItWasGiven) {
    Media::FileController controller(&parsers);
    EXPECT_EQ(controller.parsers(), static_cast<Media::ICreatorFileParser*>(&parsers));
}

TEST_F(FileControllerTest, ParsesAFileOnItsOwnThreadBetweenBusyAndIdle) {
    const EditorService::Testing::RunningEngine engine;
    const QString path = QString::fromStdString(EditorService::Testing::mediaFixture("clip.mov"));

    std::mutex mutex;
    std::vector<std::string> events;
    std::vector<std::thread::id> threads;
    auto note = [&](const std::string& event) {
        std::lock_guard<std::mutex> lock(mutex);
        events.push_back(event);
        threads.push_back(std::this_thread::get_id());
    };
    std::promise<void> idle;
    Media::FileController controller(&parsers);
    QObject::connect(
        &controller, &Media::FileController::isBusy, &controller, [&] { note("isBusy"); },
        Qt::DirectConnection);
    QObject::connect(
        &controller, &Media::FileController::isIdle, &controller,
        [&] {
            note("isIdle");
            idle.set_value();
        },
        Qt::DirectConnection);
    controller.parse(path, [&](const Velmor::AV::MediaInfo& info, std::exception_ptr error) {
        note(error ? "failed" : info.format);
    });
    ASSERT_EQ(idle.get_future().wait_for(generously), std::future_status::ready);
    std::lock_guard<std::mutex> lock(mutex);
    const std::vector<std::string> expected{"isBusy", "mov,mp4,m4a,3gp,3g2,mj2", "isIdle"};
    EXPECT_EQ(events, expected);
    for (const auto& thread : threads)
        EXPECT_NE(thread, std::this_thread::get_id());
}

TEST_F(FileControllerTest, AFileThatCanNotBeParsedGivesTheFailureAndNoDescription) {
    const EditorService::Testing::RunningEngine engine;
    const QString path =
        QString::fromStdString(EditorService::Testing::mediaFixture("notmedia.txt"));
    std::promise<std::pair<std::string, std::exception_ptr>> parsed;
    Media::FileController controller(&parsers);
    controller.parse(path, [&](const Velmor::AV::MediaInfo& info, std::exception_ptr error) {
        parsed.set_value({info.format, std::move(error)});
    });
    auto result = parsed.get_future();
    ASSERT_EQ(result.wait_for(generously), std::future_status::ready);
    const auto [format, failure] = result.get();
    EXPECT_EQ(format, "");
    EXPECT_THAT(failure,
                FailedWith<Velmor::AV::MediaError>("Can not open media file: " + path.toStdString()
                                                   + ": Invalid data found when processing input"));
}

TEST_F(FileControllerTest, SubmittedWorkRunsOnTheControllersThread) {
    std::promise<std::thread::id> ran;
    Media::FileController controller(&parsers);
    controller.submit([&] { ran.set_value(std::this_thread::get_id()); });
    auto result = ran.get_future();
    ASSERT_EQ(result.wait_for(generously), std::future_status::ready);
    EXPECT_NE(result.get(), std::this_thread::get_id());
}

TEST_F(FileControllerTest, InstanceIsTheLastControllerStillAlive) {
    EXPECT_EQ(Media::FileController::instance(), nullptr);
    {
        Media::FileController controller(&parsers);
        EXPECT_EQ(Media::FileController::instance(), &controller);
    }
    EXPECT_EQ(Media::FileController::instance(), nullptr);
}

TEST_F(FileControllerTest, ConstructionAndDestructionAreRecorded) {
    { Media::FileController controller(&parsers); }
    const std::vector<std::string> expected{"Media::FileController::FileController",
                                            "Media::FileController::~FileController"};
    EXPECT_EQ(CallLog::entries(), expected);
}

TEST_F(FileControllerTest, AnInjectedFailureLeavesTheConstructor) {
    Probe::failNext("Media::FileController::FileController");
    EXPECT_THROW(Media::FileController controller(&parsers), std::runtime_error);
    EXPECT_TRUE(CallLog::entries().empty());
}

TEST_F(FileControllerTest,
       AParseStillQueuedWhenTheControllerGoesEndsCancelledOnTheDestroyingThread) {
    std::promise<void> started;
    std::promise<void> release;
    auto released = release.get_future().share();
    std::vector<std::exception_ptr> failures;
    std::thread::id calledOn;
    {
        Media::FileController controller(&parsers);
        controller.submit([&started, released] {
            started.set_value();
            released.wait();
        });
        controller.parse(QStringLiteral("/nonexistent/queued.mp4"),
                         [&](const Velmor::AV::MediaInfo& info, std::exception_ptr error) {
                             EXPECT_TRUE(info.format.empty());
                             failures.push_back(error);
                             calledOn = std::this_thread::get_id();
                         });
        // Queued behind the parse: the controller's end lets go of it, and so of the hold.
        auto releaser = std::make_shared<Releaser>();
        releaser->release = [&release] { release.set_value(); };
        controller.submit([releaser] {});
        releaser.reset();
        ASSERT_EQ(started.get_future().wait_for(generously), std::future_status::ready);
    }
    ASSERT_EQ(failures.size(), 1u);
    EXPECT_THAT(failures.front(),
                FailedWith<Media::ProbeCancelled>("Probe cancelled: /nonexistent/queued.mp4"));
    EXPECT_EQ(calledOn, std::this_thread::get_id());
}

TEST_F(FileControllerTest, AParseNoLongerWantedOpensNothingAndEndsCancelled) {
    const EditorService::Testing::RunningEngine engine;
    // Opened, this file would fail with its own reason.
    const QString path =
        QString::fromStdString(EditorService::Testing::mediaFixture("notmedia.txt"));
    std::promise<std::exception_ptr> parsed;
    Media::FileController controller(&parsers);
    controller.parse(
        path,
        // Moved, so that the failure is freed on this thread: ThreadSanitizer does not see
        // libstdc++'s own count of its references.
        [&](const Velmor::AV::MediaInfo&, std::exception_ptr error) {
            parsed.set_value(std::move(error));
        },
        [] { return false; });
    auto result = parsed.get_future();
    ASSERT_EQ(result.wait_for(generously), std::future_status::ready);
    EXPECT_THAT(result.get(),
                FailedWith<Media::ProbeCancelled>("Probe cancelled: " + path.toStdString()));
}

TEST_F(FileControllerTest, AParseStillWantedRuns) {
    const EditorService::Testing::RunningEngine engine;
    const QString path = QString::fromStdString(EditorService::Testing::mediaFixture("clip.mov"));
    std::promise<std::string> parsed;
    Media::FileController controller(&parsers);
    controller.parse(
        path,
        [&](const Velmor::AV::MediaInfo& info, std::exception_ptr error) {
            parsed.set_value(error ? "failed" : info.format);
        },
        [] { return true; });
    auto result = parsed.get_future();
    ASSERT_EQ(result.wait_for(generously), std::future_status::ready);
    EXPECT_EQ(result.get(), "mov,mp4,m4a,3gp,3g2,mj2");
}
