#include "media/ProbeService.h"

#include "platform/editorlogic/FileController.h"
#include "tests/media/MediaServiceFixture.h"
#include "tests/support/EventLoop.h"
#include "tests/support/ManualScheduler.h"

#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>

using EditorService::GlobalContextProvider;
using EditorService::ProbeService;
using EditorService::Testing::collect;
using EditorService::Testing::Collected;
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
        Media::FileController::instance()->submit([this] {
            std::unique_lock<std::mutex> lock(mutex);
            released.wait(lock, [this] { return free; });
        });
    }
    void TearDown() override {
        release();
        MediaServiceFixture::TearDown();
    }

    void release() {
        std::lock_guard<std::mutex> lock(mutex);
        free = true;
        released.notify_all();
    }

    std::shared_ptr<Collected> probe(const std::string& name) {
        ProbeService service(rxcpp::observe_on_one_worker{rxcpp::schedulers::scheduler(timer)});
        return collect(service.run(QStringList{"probe", fixture(name)}));
    }

    static nlohmann::json queued(const std::string& name, int ahead) {
        return {
            {"probe", {{"path", fixture(name).toStdString()}, {"queued", true}, {"ahead", ahead}}}};
    }
    static std::vector<nlohmann::json> valuesOf(const std::shared_ptr<Collected>& collected) {
        std::lock_guard<std::mutex> lock(collected->mutex);
        return collected->values;
    }

    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
    std::mutex mutex;
    std::condition_variable released;
    bool free = false;
};

} // namespace

TEST_F(ProbeServiceQueueTest, AWaitingProbeSaysEvery400MsHowManyWaitBeforeIt) {
    const auto first = probe("h264_aac.mp4");
    const auto second = probe("tone.wav");
    timer->advanceBy(399ms);
    EXPECT_TRUE(valuesOf(first).empty());
    timer->advanceBy(1ms);
    EXPECT_EQ(valuesOf(first), std::vector<nlohmann::json>{queued("h264_aac.mp4", 0)});
    EXPECT_EQ(valuesOf(second), std::vector<nlohmann::json>{queued("tone.wav", 1)});
    timer->advanceBy(400ms);
    EXPECT_EQ(valuesOf(second).size(), 2u);
}

TEST_F(ProbeServiceQueueTest, AProbeWhoseTurnCameSaysNoMoreThatItWaits) {
    const auto only = probe("h264_aac.mp4");
    timer->advanceBy(400ms);
    release();
    ASSERT_TRUE(spinUntil([&] { return only->ended(); }));
    timer->advanceBy(2000ms);
    const auto values = valuesOf(only);
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[0], queued("h264_aac.mp4", 0));
    EXPECT_EQ(values[1].at("probe").at("format"), "mov,mp4,m4a,3gp,3g2,mj2");
    EXPECT_TRUE(only->completed);
}
