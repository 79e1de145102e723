#include "media/ExportRegistry.h"
#include "media/ExportService.h"

#include "tests/media/MediaServiceFixture.h"
#include "tests/support/EventLoop.h"
#include "tests/support/FailedWith.h"
#include "tests/support/ManualScheduler.h"

#include <QFile>
#include <chrono>
#include <condition_variable>
#include <gtest/gtest.h>
#include <limits>
#include <mutex>

using EditorService::ExportRegistry;
using EditorService::ExportRun;
using EditorService::ExportService;
using EditorService::GlobalContextProvider;
using EditorService::Testing::collect;
using EditorService::Testing::Collected;
using EditorService::Testing::FailedWith;
using EditorService::Testing::ManualScheduler;
using EditorService::Testing::MediaServiceFixture;
using EditorService::Testing::spinUntil;
using namespace std::chrono_literals;

namespace {

// Where the stand-in runs wait until the test lets them finish.
struct Hold {
    std::mutex mutex;
    std::condition_variable changed;
    bool released = false;
    int running = 0;

    void release() {
        std::lock_guard<std::mutex> lock(mutex);
        released = true;
        changed.notify_all();
    }
    int runningNow() {
        std::lock_guard<std::mutex> lock(mutex);
        return running;
    }
};

// Writes its output once the hold is released, or gives up when cancelled.
class HeldRun : public ExportRun {
public:
    HeldRun(std::shared_ptr<Hold> hold, std::string output)
        : hold(std::move(hold))
        , output(std::move(output)) {}

    Export::ExportResult run(const Export::Exporter::Progress&) override {
        std::unique_lock<std::mutex> lock(hold->mutex);
        ++hold->running;
        hold->changed.wait(lock, [this] { return hold->released || cancelled; });
        --hold->running;
        if (cancelled)
            throw Export::ExportCancelled(output);
        QFile file(QString::fromStdString(output));
        file.open(QIODevice::WriteOnly);
        return {};
    }

    void cancel() override {
        std::lock_guard<std::mutex> lock(hold->mutex);
        cancelled = true;
        hold->changed.notify_all();
    }

private:
    std::shared_ptr<Hold> hold;
    std::string output;
    bool cancelled = false; // under the hold's mutex
};

// Exports on one render-job place, the values of those waiting timed by a manual clock.
class ExportServiceQueueTest : public MediaServiceFixture {
protected:
    void SetUp() override {
        MediaServiceFixture::SetUp();
        startProvider({"--render-jobs=1"});
    }
    void TearDown() override {
        hold->release();
        MediaServiceFixture::TearDown();
    }

    rxcpp::observable<nlohmann::json> exportTo(const QString& name) {
        const auto hold = this->hold;
        ExportService service(
            [hold](const Export::ExportSettings& settings) -> std::unique_ptr<ExportRun> {
                return std::make_unique<HeldRun>(hold, settings.output);
            },
            rxcpp::observe_on_one_worker{rxcpp::schedulers::scheduler(timer)});
        return service.run(
            QStringList{"app", fixture("h264_aac.mp4"), "--output=" + scratchFile(name)});
    }

    // Until that many exports wait for the place.
    bool waiting(int count) {
        return spinUntil([&] {
            const auto registry = ExportRegistry::find(GlobalContextProvider::instance());
            return registry && registry->ahead(std::numeric_limits<std::uint64_t>::max()) == count;
        });
    }

    static std::size_t count(const std::shared_ptr<Collected>& collected) {
        std::lock_guard<std::mutex> lock(collected->mutex);
        return collected->values.size();
    }
    static nlohmann::json last(const std::shared_ptr<Collected>& collected) {
        std::lock_guard<std::mutex> lock(collected->mutex);
        return collected->values.empty() ? nlohmann::json() : collected->values.back();
    }
    nlohmann::json queued(const QString& name, int ahead) const {
        return {
            {"export",
             {{"output", scratchFile(name).toStdString()}, {"queued", true}, {"ahead", ahead}}}};
    }

    std::shared_ptr<Hold> hold = std::make_shared<Hold>();
    std::shared_ptr<ManualScheduler> timer = std::make_shared<ManualScheduler>();
};

} // namespace

TEST_F(ExportServiceQueueTest, AWaitingExportSaysEvery400MsHowManyWaitBeforeIt) {
    const auto running = collect(exportTo("running.mp4"));
    ASSERT_TRUE(spinUntil([&] { return hold->runningNow() == 1; }));
    const auto second = collect(exportTo("second.mp4"));
    const auto third = collect(exportTo("third.mp4"));
    ASSERT_TRUE(waiting(2));

    timer->advanceBy(399ms);
    EXPECT_EQ(count(second), 0u);
    EXPECT_EQ(count(third), 0u);
    timer->advanceBy(1ms);
    EXPECT_EQ(last(second), queued("second.mp4", 0));
    EXPECT_EQ(last(third), queued("third.mp4", 1));
    timer->advanceBy(400ms);
    EXPECT_EQ(count(second), 2u);
    EXPECT_EQ(count(third), 2u);
}

TEST_F(ExportServiceQueueTest, AnExportThatLeavesTheQueueNoLongerCountsAheadOfOthers) {
    const auto running = collect(exportTo("running.mp4"));
    ASSERT_TRUE(spinUntil([&] { return hold->runningNow() == 1; }));
    rxcpp::composite_subscription leaving;
    exportTo("leaving.mp4").subscribe(leaving, [](const nlohmann::json&) {});
    const auto staying = collect(exportTo("staying.mp4"));
    ASSERT_TRUE(waiting(2));
    timer->advanceBy(400ms);
    EXPECT_EQ(last(staying), queued("staying.mp4", 1));

    leaving.unsubscribe();
    ASSERT_TRUE(waiting(1));
    timer->advanceBy(400ms);
    EXPECT_EQ(last(staying), queued("staying.mp4", 0));
}

TEST_F(ExportServiceQueueTest, AnExportThatGotItsPlaceSaysNoMoreThatItWaits) {
    const auto first = collect(exportTo("first.mp4"));
    ASSERT_TRUE(spinUntil([&] { return hold->runningNow() == 1; }));
    const auto second = collect(exportTo("second.mp4"));
    ASSERT_TRUE(waiting(1));
    timer->advanceBy(400ms);
    ASSERT_EQ(count(second), 1u);

    hold->release();
    ASSERT_TRUE(spinUntil([&] { return first->ended() && second->ended(); }));
    timer->advanceBy(2000ms);
    ASSERT_FALSE(second->error);
    std::lock_guard<std::mutex> lock(second->mutex);
    ASSERT_GE(second->values.size(), 2u);
    EXPECT_EQ(second->values.back().at("export").at("done"), true);
    for (std::size_t i = 1; i < second->values.size(); ++i)
        EXPECT_FALSE(second->values[i].at("export").contains("queued")) << i;
}

TEST_F(ExportServiceQueueTest, AnExportThatTakesAFreePlaceAtOnceNeverSaysItWaits) {
    hold->release();
    const auto only = collect(exportTo("only.mp4"));
    ASSERT_TRUE(spinUntil([&] { return only->ended(); }));
    timer->advanceBy(2000ms);
    ASSERT_FALSE(only->error);
    std::lock_guard<std::mutex> lock(only->mutex);
    ASSERT_EQ(only->values.size(), 1u);
    EXPECT_EQ(only->values.back().at("export").at("done"), true);
}

TEST_F(ExportServiceQueueTest, AnExportWaitingForAPlaceWhenTheRuntimeGoesEndsCancelled) {
    rxcpp::composite_subscription running;
    exportTo("running.mp4")
        .subscribe(
            running, [](const nlohmann::json&) {}, [](std::exception_ptr) {});
    ASSERT_TRUE(spinUntil([&] { return hold->runningNow() == 1; }));
    const auto behind = collect(exportTo("behind.mp4"));
    ASSERT_TRUE(waiting(1));
    // The running export lets go of its place, but the runtime goes before the next turn.
    running.unsubscribe();
    provider.reset();
    EXPECT_TRUE(behind->ended());
    EXPECT_THAT(behind->error, FailedWith<Export::ExportCancelled>(
                                   "Export cancelled: " + scratchFile("behind.mp4").toStdString()));
}
