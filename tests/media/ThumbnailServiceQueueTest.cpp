#include "media/ThumbnailService.h"

#include "platform/editorlogic/TaskController.h"
#include "tests/media/HeldTurn.h"
#include "tests/media/MediaServiceFixture.h"
#include "tests/support/EventLoop.h"
#include "tests/support/ManualScheduler.h"

#include <gtest/gtest.h>

using EditorService::GlobalContextProvider;
using EditorService::ThumbnailService;
using EditorService::Testing::collect;
using EditorService::Testing::Collected;
using EditorService::Testing::HeldTurn;
using EditorService::Testing::ManualScheduler;
using EditorService::Testing::MediaServiceFixture;
using EditorService::Testing::spinUntil;
using namespace std::chrono_literals;

namespace {

// Thumbnails queued on the task controller's one thread behind a job of the test's own, the
// values of those waiting timed by a manual clock.
class ThumbnailServiceQueueTest : public MediaServiceFixture {
protected:
    void SetUp() override {
        MediaServiceFixture::SetUp();
        startProvider();
        provider->require(GlobalContextProvider::Render);
        Task::Controller::instance()->submit(held.job());
    }
    void TearDown() override {
        held.release();
        MediaServiceFixture::TearDown();
    }

    std::shared_ptr<Collected> thumbnail(const QString& name) {
        ThumbnailService service(rxcpp::observe_on_one_worker{rxcpp::schedulers::scheduler(timer)});
        return collect(service.run(QStringList{"thumbnail", fixture("h264_aac.mp4"),
                                               "--output=" + scratchFile(name), "--at=0"}));
    }

    nlohmann::json queued(const QString& name, int ahead) const {
        return {
            {"thumbnail",
             {{"output", scratchFile(name).toStdString()}, {"queued", true}, {"ahead", ahead}}}};
    }

    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
    HeldTurn held;
};

} // namespace

TEST_F(ThumbnailServiceQueueTest, AWaitingThumbnailSaysEvery400MsHowManyWaitBeforeIt) {
    const auto first = thumbnail("first.png");
    const auto second = thumbnail("second.png");
    timer->advanceBy(399ms);
    EXPECT_TRUE(first->valuesNow().empty());
    timer->advanceBy(1ms);
    EXPECT_EQ(first->valuesNow(), std::vector<nlohmann::json>{queued("first.png", 0)});
    EXPECT_EQ(second->valuesNow(), std::vector<nlohmann::json>{queued("second.png", 1)});
    timer->advanceBy(400ms);
    EXPECT_EQ(second->valuesNow().size(), 2u);
}

TEST_F(ThumbnailServiceQueueTest, AThumbnailWhoseTurnCameSaysNoMoreThatItWaits) {
    const auto only = thumbnail("only.png");
    timer->advanceBy(400ms);
    held.release();
    ASSERT_TRUE(spinUntil([&] { return only->ended(); }));
    timer->advanceBy(2000ms);
    const auto values = only->valuesNow();
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0], queued("only.png", 0));
    EXPECT_EQ(values[1].at("thumbnail").at("frame_ms"), 0);
    EXPECT_TRUE(only->completed);
}
