#include "media/ThumbnailService.h"

#include "media/ExportService.h"
#include "platform/av/MediaError.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/editorlogic/ThumbnailController.h"
#include "platform/editorlogic/ThumbnailExtractor.h"
#include "platform/package/PackageDirectory.h"
#include "service/contexts/GlobalContextProvider.h"
#include "service/services/LimitOnSilence.h"
#include "tests/media/LifecycleTable.h"
#include "tests/media/MediaServiceFixture.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"
#include "tests/support/ManualScheduler.h"
#include "tests/support/MediaFixtures.h"

#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

using EditorService::ExportService;
using EditorService::GlobalContextProvider;
using EditorService::ThumbnailRequest;
using EditorService::ThumbnailService;
using EditorService::Testing::FailedWith;
using EditorService::Testing::ManualScheduler;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::spinUntil;
using EditorService::Testing::Lifecycle::Activity;
using EditorService::Testing::Lifecycle::Event;
using EditorService::Testing::Lifecycle::Log;
using EditorService::Testing::Lifecycle::nameOf;
using EditorService::Testing::Lifecycle::record;
using EditorService::Testing::Lifecycle::rowName;
using EditorService::Testing::Lifecycle::rowsWhereFirst;
using EditorService::Testing::Lifecycle::SerialGate;
using Velmor::AV::MediaError;
using namespace std::chrono_literals;

// Thumbnails have no render-job limit: the rows vary how many are in flight at once, all
// queued on the task controller's one thread.
using Row = EditorService::Testing::Lifecycle::RequestsRow;

namespace {

// The first bytes of a PNG file.
bool isPng(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.read(8) == "\x89PNG\r\n\x1a\n";
}

// Only a finish lets the pictures be taken: a thumbnail that nobody listens to any more is
// left untaken when its turn comes, and one still queued when the runtime goes never runs.
bool picturesAppear(const Row& row) {
    return row.first == Event::Finish;
}

} // namespace

// Each row queues the thumbnails on the task controller's thread behind a job of the test's
// own, lets two events happen and checks: the stream ends once, as its first event says (not
// at all after an unsubscribe); nothing is delivered after that end; which pictures appear;
// the controllers are idle; the task controller still serves the next thumbnail; and nothing
// holds the subscriber after it let go, nor the extractor after the runtime.
class ThumbnailServiceLifecycleTest : public testing::TestWithParam<Row> {
protected:
    static constexpr std::chrono::seconds limit{10};

    void SetUp() override {
        ASSERT_TRUE(packages.isValid());
        ASSERT_TRUE(files.isValid());
        Package::setPackageDirectory(packages.path());
    }
    void TearDown() override {
        gate->open();
        provider.reset();
        Package::setPackageDirectory(QString());
    }

    void startRuntime() {
        provider.emplace(QStringList{"app"});
        provider->require(GlobalContextProvider::Render);
        ASSERT_TRUE(Media::FileController::instance());
        ASSERT_TRUE(Task::Controller::instance());
        ASSERT_TRUE(Thumbnail::Controller::instance());
        parses = Activity::of(Media::FileController::instance());
        tasks = Activity::of(Task::Controller::instance());
        extractor = Thumbnail::Controller::instance()->extractor();
    }

    // Pictures of one input that exists only once the job is to finish: while it is missing,
    // every thumbnail fails.
    std::vector<ThumbnailRequest> requests(int count) const {
        std::vector<ThumbnailRequest> all(count);
        for (int i = 0; i < count; ++i) {
            all[i].path = files.filePath(QStringLiteral("in.mp4"));
            all[i].output = files.filePath(QStringLiteral("out%1.png").arg(i));
            all[i].at = 40 * i;
        }
        return all;
    }

    rxcpp::observable<nlohmann::json> thumbnail(const std::vector<ThumbnailRequest>& list) const {
        ThumbnailService service;
        return service.run(EditorService::Testing::each(list));
    }

    // Runs the main thread's loop and the time limit's due actions until `done` holds, then
    // delivers what became due on the way.
    bool settleUntil(const std::function<bool()>& done) {
        const bool reached = spinUntil([&] {
            timer->advanceBy(0ms);
            return done();
        });
        timer->advanceBy(0ms);
        return reached;
    }

    // Until the hold stands, or, once it is open, every job behind it has run.
    bool settled() {
        return settleUntil([this] {
            if (!gate->isOpen())
                return gate->isHolding();
            return !gate->isHolding() && parses->idle() && tasks->idle();
        });
    }

    void happen(Event event, const std::vector<ThumbnailRequest>& list) {
        switch (event) {
        case Event::Finish:
            QFile::copy(QString::fromStdString(mediaFixture("h264_aac.mp4")), list.front().path);
            gate->open();
            break;
        case Event::Fail:
            gate->open();
            break;
        case Event::Cancel:
            valuesAtCancel = log->valueCount();
            lifetime.unsubscribe();
            break;
        case Event::Expire:
            timer->advanceBy(limit);
            break;
        case Event::RuntimeGone:
            ExportService::cancelAll();
            provider.reset();
            break;
        }
        ASSERT_TRUE(settled()) << nameOf(event);
    }

    QTemporaryDir packages;
    QTemporaryDir files;
    std::optional<GlobalContextProvider> provider;
    std::shared_ptr<SerialGate> gate = std::make_shared<SerialGate>();
    std::shared_ptr<Activity> parses;
    std::shared_ptr<Activity> tasks;
    std::weak_ptr<Thumbnail::Extractor> extractor;
    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
    rxcpp::composite_subscription lifetime;
    std::shared_ptr<Log> log = std::make_shared<Log>();
    std::size_t valuesAtCancel = 0;
    std::shared_ptr<std::atomic<int>> expiries = std::make_shared<std::atomic<int>>(0);
};

TEST_P(ThumbnailServiceLifecycleTest, TheEndingEventEndsTheStreamOnceAndNothingOutlivesIt) {
    const Row row = GetParam();
    const auto list = requests(row.requests);
    startRuntime();
    ASSERT_FALSE(HasFatalFailure());
    SerialGate::holdThrough(gate, [](std::function<void()> job) {
        Task::Controller::instance()->submit(std::move(job));
    });
    ASSERT_TRUE(settled());
    {
        auto stream = thumbnail(list);
        if (row.involves(Event::Expire)) {
            const rxcpp::observe_on_one_worker onTimer{rxcpp::schedulers::scheduler(timer)};
            const auto expired = expiries;
            stream = EditorService::limitOnSilence(
                stream, limit, [expired] { ++*expired; }, onTimer, onTimer);
        }
        record(stream, lifetime, log);
    }
    // Subscribing queued every thumbnail behind the hold.
    EXPECT_EQ(log->endCount(), 0);

    happen(row.first, list);
    ASSERT_FALSE(HasFatalFailure());
    const std::size_t valuesAtFirst = log->valueCount();
    happen(row.second, list);
    ASSERT_FALSE(HasFatalFailure());

    const Event ending = row.first;
    int ends = 0;
    std::size_t values = 0;
    {
        std::lock_guard<std::mutex> lock(log->mutex);
        if (ending == Event::Finish) {
            EXPECT_TRUE(log->completed);
            ASSERT_EQ(log->values.size(), list.size());
            for (std::size_t i = 0; i < list.size(); ++i) {
                const auto& taken = log->values[i].at("thumbnail");
                EXPECT_EQ(taken.at("path"), list[i].path.toStdString());
                EXPECT_EQ(taken.at("output"), list[i].output.toStdString());
                EXPECT_EQ(taken.at("frame_ms"), list[i].at);
            }
        } else if (ending == Event::Fail) {
            // The thumbnails run in the order they came: the first one's failure ends the
            // stream.
            EXPECT_THAT(log->error, FailedWith<MediaError>("Can not open media file: "
                                                           + list.front().path.toStdString()
                                                           + ": No such file or directory"));
        } else if (ending == Event::Cancel) {
            EXPECT_EQ(log->values.size(), valuesAtCancel);
        } else if (ending == Event::Expire) {
            EXPECT_THAT(log->error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
        } else if (ending == Event::RuntimeGone) {
            // The queued ones are told in the order they came: the first one's ends the stream.
            EXPECT_THAT(log->error,
                        FailedWith<Thumbnail::ThumbnailCancelled>(
                            "Thumbnail cancelled: " + list.front().output.toStdString()));
        }
        if (ending != Event::Finish) {
            EXPECT_TRUE(log->values.empty());
        }
        EXPECT_EQ(log->ends, ending == Event::Cancel ? 0 : 1);
        if (log->ends > 0) {
            EXPECT_EQ(log->values.size(), log->valuesAtEnd);
        }
        EXPECT_EQ(log->values.size(), valuesAtFirst);
        ends = log->ends;
        values = log->values.size();
    }
    EXPECT_EQ(expiries->load(), ending == Event::Expire ? 1 : 0);

    // Whatever still waits behind the hold runs now and delivers nothing more; the thread
    // serves the next thumbnail.
    if (provider) {
        gate->open();
        ASSERT_TRUE(settled());
        EXPECT_EQ(log->valueCount(), values);
        EXPECT_EQ(log->endCount(), ends);
        rxcpp::composite_subscription next;
        const auto nextLog = std::make_shared<Log>();
        ThumbnailRequest request;
        request.path = QString::fromStdString(mediaFixture("noaudio.mp4"));
        request.output = files.filePath(QStringLiteral("next.png"));
        record(thumbnail({request}), next, nextLog);
        EXPECT_TRUE(settleUntil([&] { return nextLog->endCount() > 0; }));
        EXPECT_TRUE(nextLog->completed);
        EXPECT_EQ(nextLog->valueCount(), 1u);
        EXPECT_TRUE(isPng(request.output));
        EXPECT_TRUE(settleUntil([this] { return tasks->idle(); }));
    } else {
        // The queued extraction held the extractor; the runtime's end let both go.
        EXPECT_TRUE(extractor.expired());
    }
    for (const auto& request : list) {
        EXPECT_EQ(QFile::exists(request.output), picturesAppear(row))
            << request.output.toStdString();
        EXPECT_EQ(isPng(request.output), picturesAppear(row)) << request.output.toStdString();
    }
    EXPECT_TRUE(parses->idle());
    EXPECT_TRUE(tasks->idle());

    // Nothing holds the subscriber, nor the hold, once the subscription is let go.
    lifetime.unsubscribe();
    EXPECT_TRUE(settleUntil([this] { return log.use_count() == 1; })) << log.use_count();
    EXPECT_TRUE(settleUntil([this] { return gate.use_count() == 1; })) << gate.use_count();
}

INSTANTIATE_TEST_SUITE_P(EndedByTheFirstEvent, ThumbnailServiceLifecycleTest,
                         testing::ValuesIn(rowsWhereFirst([](Event) { return true; })), rowName);
