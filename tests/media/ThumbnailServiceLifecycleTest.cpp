#include "media/ThumbnailService.h"

#include "platform/av/MediaError.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/editorlogic/ThumbnailController.h"
#include "platform/editorlogic/ThumbnailExtractor.h"
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
using EditorService::ThumbnailRequest;
using EditorService::ThumbnailService;
using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::Lifecycle::Event;
using EditorService::Testing::Lifecycle::QueuedRequestsLifecycleTest;
using EditorService::Testing::Lifecycle::rowName;
using EditorService::Testing::Lifecycle::rowsWhereFirst;
using Velmor::AV::MediaError;

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
class ThumbnailServiceLifecycleTest : public QueuedRequestsLifecycleTest {
protected:
    void SetUp() override {
        QueuedRequestsLifecycleTest::SetUp();
        ASSERT_TRUE(files.isValid());
    }

    void startRuntime() {
        QueuedRequestsLifecycleTest::startRuntime({"app"}, GlobalContextProvider::Render);
        ASSERT_FALSE(HasFatalFailure());
        ASSERT_TRUE(Thumbnail::Controller::instance());
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

    void makeInputs() override {
        QFile::copy(QString::fromStdString(mediaFixture("h264_aac.mp4")), list.front().path);
    }

    QTemporaryDir files;
    std::vector<ThumbnailRequest> list;
    std::weak_ptr<Thumbnail::Extractor> extractor;
};

TEST_P(ThumbnailServiceLifecycleTest, TheEndingEventEndsTheStreamOnceAndNothingOutlivesIt) {
    const Row row = GetParam();
    list = requests(row.requests);
    startRuntime();
    ASSERT_FALSE(HasFatalFailure());
    holdSubscribeAndHappen(
        [](std::function<void()> job) { Task::Controller::instance()->submit(std::move(job)); },
        thumbnail(list), row);
    ASSERT_FALSE(HasFatalFailure());

    const Event ending = row.first;
    {
        std::lock_guard<std::mutex> lock(log->mutex);
        if (ending == Event::Finish) {
            EXPECT_TRUE(log->completed);
            ASSERT_EQ(log->values.size(), list.size());
            for (std::size_t i = 0; i < list.size(); ++i) {
                const auto& taken = log->values[i].at("thumbnail");
                EXPECT_EQ(taken.at("path"), list[i].path.toStdString());
                EXPECT_EQ(taken.at("output"), list[i].output.toStdString());
                EXPECT_EQ(taken.at("frame_ms"), list[i].at.milliseconds);
            }
        } else if (ending == Event::Fail) {
            // The thumbnails run in the order they came: the first one's failure ends the
            // stream.
            EXPECT_THAT(log->error, FailedWith<MediaError>("Can not open media file: "
                                                           + list.front().path.toStdString()
                                                           + ": No such file or directory"));
        } else if (ending == Event::RuntimeGone) {
            // The queued ones are told in the order they came: the first one's ends the stream.
            EXPECT_THAT(log->error,
                        FailedWith<Thumbnail::ThumbnailCancelled>(
                            "Thumbnail cancelled: " + list.front().output.toStdString()));
        }
    }
    expectValuesOnlyOnFinish(ending);
    expectEndedOnceBy(ending, valuesAtFirst);

    if (provider) {
        const QString next = files.filePath(QStringLiteral("next.png"));
        expectTheQueueToServeTheNext([this, next] {
            ThumbnailRequest request;
            request.path = QString::fromStdString(mediaFixture("noaudio.mp4"));
            request.output = next;
            return thumbnail({request});
        });
        ASSERT_FALSE(HasFatalFailure());
        EXPECT_TRUE(isPng(next));
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
    expectIdleAndLetGo();
}

INSTANTIATE_TEST_SUITE_P(EndedByTheFirstEvent, ThumbnailServiceLifecycleTest,
                         testing::ValuesIn(rowsWhereFirst([](Event) { return true; })), rowName);
