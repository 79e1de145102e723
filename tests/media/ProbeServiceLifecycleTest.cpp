#include "media/ProbeService.h"

#include "media/ExportService.h"
#include "platform/av/MediaError.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
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
using EditorService::ProbeRequest;
using EditorService::ProbeService;
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

// Probes have no render-job limit: the rows vary how many are in flight at once, all queued
// on the file controller's one thread.
using Row = EditorService::Testing::Lifecycle::RequestsRow;

// Each row queues the probes on the file controller's thread behind a job of the test's own,
// lets two events happen and checks: the stream ends once, as its first event says (not at
// all after an unsubscribe); nothing is delivered after that end; the controllers are idle;
// the file controller still serves the next probe; and nothing holds the subscriber after it
// let go.
class ProbeServiceLifecycleTest : public testing::TestWithParam<Row> {
protected:
    static constexpr std::chrono::seconds limit{10};

    void SetUp() override {
        ASSERT_TRUE(packages.isValid());
        ASSERT_TRUE(inputs.isValid());
        Package::setPackageDirectory(packages.path());
    }
    void TearDown() override {
        gate->open();
        provider.reset();
        Package::setPackageDirectory(QString());
    }

    void startRuntime() {
        provider.emplace(QStringList{"app"});
        provider->require(GlobalContextProvider::Media);
        ASSERT_TRUE(Media::FileController::instance());
        ASSERT_TRUE(Task::Controller::instance());
        parses = Activity::of(Media::FileController::instance());
        tasks = Activity::of(Task::Controller::instance());
    }

    // Paths that exist only once the job is to finish: a missing one fails its probe.
    std::vector<ProbeRequest> requests(int count) const {
        std::vector<ProbeRequest> all(count);
        for (int i = 0; i < count; ++i)
            all[i].path = inputs.filePath(QStringLiteral("in%1.mp4").arg(i));
        return all;
    }

    rxcpp::observable<nlohmann::json> probe(const std::vector<ProbeRequest>& list) const {
        ProbeService service;
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

    void happen(Event event, const std::vector<ProbeRequest>& list) {
        switch (event) {
        case Event::Finish:
            for (const auto& request : list)
                QFile::copy(QString::fromStdString(mediaFixture("h264_aac.mp4")), request.path);
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
    QTemporaryDir inputs;
    std::optional<GlobalContextProvider> provider;
    std::shared_ptr<SerialGate> gate = std::make_shared<SerialGate>();
    std::shared_ptr<Activity> parses;
    std::shared_ptr<Activity> tasks;
    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
    rxcpp::composite_subscription lifetime;
    std::shared_ptr<Log> log = std::make_shared<Log>();
    std::size_t valuesAtCancel = 0;
    std::shared_ptr<std::atomic<int>> expiries = std::make_shared<std::atomic<int>>(0);
};

TEST_P(ProbeServiceLifecycleTest, TheEndingEventEndsTheStreamOnceAndNothingOutlivesIt) {
    const Row row = GetParam();
    const auto list = requests(row.requests);
    startRuntime();
    ASSERT_FALSE(HasFatalFailure());
    SerialGate::holdThrough(gate, [](std::function<void()> job) {
        Media::FileController::instance()->submit(std::move(job));
    });
    ASSERT_TRUE(settled());
    {
        auto stream = probe(list);
        if (row.involves(Event::Expire)) {
            const rxcpp::observe_on_one_worker onTimer{rxcpp::schedulers::scheduler(timer)};
            const auto expired = expiries;
            stream = EditorService::limitOnSilence(
                stream, limit, [expired] { ++*expired; }, onTimer, onTimer);
        }
        record(stream, lifetime, log);
    }
    // Subscribing queued every probe behind the hold.
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
            for (std::size_t i = 0; i < list.size(); ++i)
                EXPECT_EQ(log->values[i].at("probe").at("path"), list[i].path.toStdString());
        } else if (ending == Event::Fail) {
            // The probes run in the order they came: the first one's failure ends the stream.
            EXPECT_THAT(log->error, FailedWith<MediaError>("Can not open media file: "
                                                           + list.front().path.toStdString()
                                                           + ": No such file or directory"));
        } else if (ending == Event::Cancel) {
            EXPECT_EQ(log->values.size(), valuesAtCancel);
        } else if (ending == Event::Expire) {
            EXPECT_THAT(log->error, FailedWith<rxcpp::timeout_error>("timeout has occurred"));
        } else if (ending == Event::RuntimeGone) {
            // The queued ones are told in the order they came: the first one's ends the stream.
            EXPECT_THAT(log->error, FailedWith<Media::ProbeCancelled>(
                                        "Probe cancelled: " + list.front().path.toStdString()));
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
    // serves the next probe.
    if (provider) {
        gate->open();
        ASSERT_TRUE(settled());
        EXPECT_EQ(log->valueCount(), values);
        EXPECT_EQ(log->endCount(), ends);
        rxcpp::composite_subscription next;
        const auto nextLog = std::make_shared<Log>();
        ProbeRequest request;
        request.path = QString::fromStdString(mediaFixture("still.png"));
        record(probe({request}), next, nextLog);
        EXPECT_TRUE(settleUntil([&] { return nextLog->endCount() > 0; }));
        EXPECT_TRUE(nextLog->completed);
        EXPECT_EQ(nextLog->valueCount(), 1u);
        EXPECT_TRUE(settleUntil([this] { return parses->idle(); }));
    }
    EXPECT_TRUE(parses->idle());
    EXPECT_TRUE(tasks->idle());

    // Nothing holds the subscriber, nor the hold, once the subscription is let go.
    lifetime.unsubscribe();
    EXPECT_TRUE(settleUntil([this] { return log.use_count() == 1; })) << log.use_count();
    EXPECT_TRUE(settleUntil([this] { return gate.use_count() == 1; })) << gate.use_count();
}

INSTANTIATE_TEST_SUITE_P(EndedByTheFirstEvent, ProbeServiceLifecycleTest,
                         testing::ValuesIn(rowsWhereFirst([](Event) { return true; })), rowName);
