#include "media/ProbeService.h"

#include "platform/av/MediaError.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "service/contexts/GlobalContextProvider.h"
#include "tests/media/LifecycleTable.h"
#include "tests/media/MediaServiceFixture.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using EditorService::GlobalContextProvider;
using EditorService::ProbeRequest;
using EditorService::ProbeService;
using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::Lifecycle::Event;
using EditorService::Testing::Lifecycle::QueuedRequestsLifecycleTest;
using EditorService::Testing::Lifecycle::rowName;
using EditorService::Testing::Lifecycle::rowsWhereFirst;
using Velmor::AV::MediaError;

// Probes have no render-job limit: the rows vary how many are in flight at once, all queued
// on the file controller's one thread.
using Row = EditorService::Testing::Lifecycle::RequestsRow;

// Each row queues the probes on the file controller's thread behind a job of the test's own,
// lets two events happen and checks: the stream ends once, as its first event says (not at
// all after an unsubscribe); nothing is delivered after that end; the controllers are idle;
// the file controller still serves the next probe; and nothing holds the subscriber after it
// let go.
class ProbeServiceLifecycleTest : public QueuedRequestsLifecycleTest {
protected:
    void SetUp() override {
        QueuedRequestsLifecycleTest::SetUp();
        ASSERT_TRUE(inputs.isValid());
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

    void makeInputs() override {
        for (const auto& request : list)
            QFile::copy(QString::fromStdString(mediaFixture("h264_aac.mp4")), request.path);
    }

    QTemporaryDir inputs;
    std::vector<ProbeRequest> list;
};

TEST_P(ProbeServiceLifecycleTest, TheEndingEventEndsTheStreamOnceAndNothingOutlivesIt) {
    const Row row = GetParam();
    list = requests(row.requests);
    startRuntime({"app"}, GlobalContextProvider::Media);
    ASSERT_FALSE(HasFatalFailure());
    holdSubscribeAndHappen(
        [](std::function<void()> job) {
            Media::FileController::instance()->submit(std::move(job));
        },
        probe(list), row);
    ASSERT_FALSE(HasFatalFailure());

    const Event ending = row.first;
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
        } else if (ending == Event::RuntimeGone) {
            // The queued ones are told in the order they came: the first one's ends the stream.
            EXPECT_THAT(log->error, FailedWith<Media::ProbeCancelled>(
                                        "Probe cancelled: " + list.front().path.toStdString()));
        }
    }
    expectValuesOnlyOnFinish(ending);
    expectEndedOnceBy(ending, valuesAtFirst);

    if (provider) {
        expectTheQueueToServeTheNext([this] {
            ProbeRequest request;
            request.path = QString::fromStdString(mediaFixture("still.png"));
            return probe({request});
        });
        ASSERT_FALSE(HasFatalFailure());
        EXPECT_TRUE(settleUntil([this] { return parses->idle(); }));
    }
    expectIdleAndLetGo();
}

INSTANTIATE_TEST_SUITE_P(EndedByTheFirstEvent, ProbeServiceLifecycleTest,
                         testing::ValuesIn(rowsWhereFirst([](Event) { return true; })), rowName);
