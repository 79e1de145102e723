#include "media/ExportSession.h"

#include "media/ExportRegistry.h"
#include "platform/foundation/Temporaries.h"
#include "platform/rxapp/RxApp.h"
#include "tests/support/FailedWith.h"

#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <stdexcept>

using EditorService::ExportRegistry;
using EditorService::ExportRequest;
using EditorService::ExportRun;
using EditorService::ExportSession;
using EditorService::Testing::FailedWith;

namespace {

// What the session's subscriber saw, every end counted.
struct Seen {
    std::mutex mutex;
    int values = 0;
    int ends = 0;
    std::exception_ptr error;
};

// A session on an output that stands already, as an export with --overwrite finds it, whose
// factory counts the runs it makes (and makes none that work).
class ExportSessionTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(directory.isValid());
        QFile existing(output);
        ASSERT_TRUE(existing.open(QIODevice::WriteOnly));
        existing.write("old");
        existing.close();
        ExportRequest request;
        request.path = directory.filePath("in.mp4");
        request.output = output;
        request.overwrite = true;
        auto made = runsMade;
        auto seen = this->seen;
        session = std::make_shared<ExportSession>(
            request,
            [made](const Export::ExportSettings&) -> std::unique_ptr<ExportRun> {
                ++*made;
                throw std::logic_error("No run was to be made");
            },
            rxcpp::make_subscriber<nlohmann::json>(
                [seen](const nlohmann::json&) {
                    std::lock_guard<std::mutex> lock(seen->mutex);
                    ++seen->values;
                },
                [seen](std::exception_ptr error) {
                    std::lock_guard<std::mutex> lock(seen->mutex);
                    ++seen->ends;
                    seen->error = error;
                },
                [seen] {
                    std::lock_guard<std::mutex> lock(seen->mutex);
                    ++seen->ends;
                }),
            registry, RxApp::instance()->mainThread());
    }

    // Neither a run, nor a temporary, nor a change to the output.
    void expectNothingTouched() {
        EXPECT_EQ(*runsMade, 0);
        EXPECT_TRUE(Velmor::Temporaries::paths().empty());
        QFile existing(output);
        ASSERT_TRUE(existing.open(QIODevice::ReadOnly));
        EXPECT_EQ(existing.readAll(), "old");
    }

    QTemporaryDir directory;
    QString output = directory.filePath("out.mp4");
    std::shared_ptr<int> runsMade = std::make_shared<int>(0);
    std::shared_ptr<Seen> seen = std::make_shared<Seen>();
    std::shared_ptr<ExportRegistry> registry = std::make_shared<ExportRegistry>();
    std::shared_ptr<ExportSession> session;
};

} // namespace

TEST_F(ExportSessionTest, ADroppedExportEndsCancelledAndGivesBackOnlyThePlaceItHeld) {
    int givenBack = 0;
    session->dropped([&givenBack] { ++givenBack; });
    EXPECT_EQ(givenBack, 1);
    std::lock_guard<std::mutex> lock(seen->mutex);
    EXPECT_EQ(seen->ends, 1);
    EXPECT_EQ(seen->values, 0);
    EXPECT_THAT(seen->error,
                FailedWith<Export::ExportCancelled>("Export cancelled: " + output.toStdString()));
    expectNothingTouched();
}

TEST_F(ExportSessionTest, ADroppedExportThatEndedBeforeOnlyGivesBackItsPlace) {
    session->cancel();
    int givenBack = 0;
    session->dropped([&givenBack] { ++givenBack; });
    EXPECT_EQ(givenBack, 1);
    std::lock_guard<std::mutex> lock(seen->mutex);
    EXPECT_EQ(seen->ends, 1);
    EXPECT_THAT(seen->error,
                FailedWith<Export::ExportCancelled>("Export cancelled: " + output.toStdString()));
    expectNothingTouched();
}

TEST_F(ExportSessionTest, ATaskOfAnExportCancelledBeforeItBeganOnlyGivesBackItsPlace) {
    session->cancel();
    int givenBack = 0;
    session->run({}, 0, [&givenBack] { ++givenBack; });
    EXPECT_EQ(givenBack, 1);
    std::lock_guard<std::mutex> lock(seen->mutex);
    EXPECT_EQ(seen->ends, 1);
    expectNothingTouched();
}

TEST_F(ExportSessionTest, ACancelAfterTheEndChangesNothing) {
    session->dropped([] {});
    session->cancel();
    session->cancel();
    std::lock_guard<std::mutex> lock(seen->mutex);
    EXPECT_EQ(seen->ends, 1);
}
