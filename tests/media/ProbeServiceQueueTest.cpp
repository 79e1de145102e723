#include "media/ProbeService.h"

#include "platform/editorlogic/FileController.h"
#include "tests/media/HeldTurn.h"
#include "tests/media/MediaServiceFixture.h"
#include "tests/support/EventLoop.h"
#include "tests/support/ManualScheduler.h"

#include <gtest/gtest.h>

using EditorService::GlobalContextProvider;
using EditorService::ProbeService;
using EditorService::Testing::collect;
using EditorService::Testing::Collected;
using EditorService::Testing::HeldTurn;
using EditorService::Testing::ManualScheduler;
using EditorService::Testing::MediaServiceFixture;
using EditorService::Testing::spinUntil;
using namespace std::chrono_literals;

namespace {

// Probes queued on the file controller's one thread behind a job of the test's own, the values
// of those waiting timed by a manual clock.
class ProbeServiceQueueTest : public MediaServiceFixture {
protected:
    void SetUp() override {
        MediaServiceFixture::SetUp();
        startProvider();
        provider->require(GlobalContextProvider::Media);
        Media::FileController::instance()->submit(held.job());
    }
    void TearDown() override {
        held.release();
        MediaServiceFixture::TearDown();
    }

    std::shared_ptr<Collected> probe(const std::string& name) {
        ProbeService service(rxcpp::observe_on_one_worker{rxcpp::schedulers::scheduler(timer)});
        return collect(service.run(QStringList{"probe", fixture(name)}));
    }

    static nlohmann::json queued(const std::string& name, int ahead) {
        return {
            {"probe", {{"path", fixture(name).toStdString()}, {"queued", true}, {"ahead", ahead}}}};
    }

    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
    HeldTurn held;
};

} // namespace

TEST_F(ProbeServiceQueueTest, AWaitingProbeSaysEvery400MsHowManyWaitBeforeIt) {
    const auto first = probe("h264_aac.mp4");
    const auto second = probe("tone.wav");
    timer->advanceBy(399ms);
    EXPECT_TRUE(first->valuesNow().empty());
    timer->advanceBy(1ms);
    EXPECT_EQ(first->valuesNow(), std::vector<nlohmann::json>{queued("h264_aac.mp4", 0)});
    EXPECT_EQ(second->valuesNow(), std::vector<nlohmann::json>{queued("tone.wav", 1)});
    timer->advanceBy(400ms);
    EXPECT_EQ(second->valuesNow().size(), 2u);
}

TEST_F(ProbeServiceQueueTest, AProbeWhoseTurnCameSaysNoMoreThatItWaits) {
    const auto only = probe("h264_aac.mp4");
    timer->advanceBy(400ms);
    held.release();
    ASSERT_TRUE(spinUntil([&] { return only->ended(); }));
    timer->advanceBy(2000ms);
    const auto values = only->valuesNow();
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0], queued("h264_aac.mp4", 0));
    EXPECT_EQ(values[1].at("probe").at("format"), "mov,mp4,m4a,3gp,3g2,mj2");
    EXPECT_TRUE(only->completed);
}
