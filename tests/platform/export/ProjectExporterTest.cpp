#include "platform/engine/CoreManager.h"
#include "platform/export/Exporter.h"
#include "platform/export/PresetProvider.h"
#include "platform/project/ProjectError.h"
#include "platform/projectrender/ProjectLoader.h"
#include "tests/support/FailedWith.h"

#include <QTemporaryDir>
#include <condition_variable>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>

using EditorService::Testing::FailedWith;
using Export::ExportCancelled;
using Export::Exporter;
using Export::ExportProgress;
using Export::ExportResult;
using Export::ExportSettings;
using Velmor::Core::CoreManager;

namespace {

Preset freeSize() {
    Export::PresetProvider provider;
    provider.load();
    provider.selectTag("format_clive");
    provider.selectPreset("mp4");
    return provider.preset();
}

// A project of colours at 64x48 and 25 frames a second, lasting the given time.
std::string colours(int milliseconds) {
    return R"({"reelsmith_project": 1,
      "output": {"width": 64, "height": 48, "frame_rate": "25/1"},
      "tracks": [{"type": "video", "clips": [
        {"color": "#ff0000", "duration_ms": )"
           + std::to_string(milliseconds / 2) + R"(},
        {"color": "#0000ff", "duration_ms": )"
           + std::to_string(milliseconds - milliseconds / 2) + "}]}]}";
}

// A project exported as a media file is: through the same exporter, its progress, cancellation
// and promise of no partial file alike.
class ProjectExporterTest : public testing::Test {
protected:
    void SetUp() override {
        auto& core = CoreManager::Instance();
        core.Initialize({}, {}, {});
        core.WaitUntilInitialized();
    }
    void TearDown() override { CoreManager::Instance().Uninitialize(); }

    ExportSettings settings(const std::string& project) {
        const std::string path = projects.filePath("edit.json").toStdString();
        std::ofstream(path) << project;
        return ExportSettings{path, output(), freeSize(), {}};
    }

    std::string output() const { return outputs.filePath("out.mp4").toStdString(); }

    bool noFiles() const { return std::filesystem::is_empty(outputs.path().toStdString()); }

    QTemporaryDir projects;
    QTemporaryDir outputs;
};

TEST_F(ProjectExporterTest, ProgressFollowsEachComposedFrameUpToTheWhole) {
    std::vector<ExportProgress> values;
    const ExportResult result =
        Exporter(settings(colours(1600))).run([&](const auto& value) { values.push_back(value); });
    EXPECT_EQ(result.frames, 40);
    ASSERT_TRUE(result.video);
    EXPECT_EQ(result.video->width, 64);
    EXPECT_EQ(result.video->height, 48);
    ASSERT_TRUE(result.audio);
    EXPECT_EQ(result.audio->channels, 2);
    ASSERT_EQ(values.size(), 40u);
    EXPECT_EQ(values.back().frames, 40);
    EXPECT_DOUBLE_EQ(values.back().progress, 1.0);
}

// A project the settings hold loaded is rendered as it is: its file is not read again (here it
// no longer holds a project at all).
TEST_F(ProjectExporterTest, AProjectLoadedAlreadyIsNotReadAgain) {
    ExportSettings loaded = settings(colours(800));
    loaded.project = std::make_shared<const Project::Edit>(
        Velmor::Render::loadProject(QString::fromStdString(loaded.input)));
    std::ofstream(loaded.input) << "not a project";
    const ExportResult result = Exporter(loaded).run({});
    EXPECT_EQ(result.frames, 20);
}

TEST_F(ProjectExporterTest, CancelFromAnotherThreadEndsAProjectExportAndLeavesNoFile) {
    Exporter exporter(settings(colours(600000)));
    std::mutex mutex;
    std::condition_variable started;
    bool progressed = false;
    std::thread canceller([&] {
        std::unique_lock<std::mutex> lock(mutex);
        started.wait(lock, [&] { return progressed; });
        exporter.cancel();
    });
    EXPECT_THAT(
        [&] {
            exporter.run([&](const ExportProgress&) {
                std::lock_guard<std::mutex> lock(mutex);
                progressed = true;
                started.notify_all();
            });
        },
        FailedWith<ExportCancelled>("Export cancelled: " + output()));
    canceller.join();
    EXPECT_TRUE(noFiles());
}

TEST_F(ProjectExporterTest, ABadProjectFailsBeforeAnythingIsWritten) {
    const ExportSettings bad = settings(R"({"reelsmith_project": 1, "tracks": []})");
    EXPECT_THAT([&] { Exporter(bad).run(nullptr); },
                FailedWith<Project::ProjectError>(
                    bad.input + ": tracks: no video track; a project has exactly one"));
    EXPECT_TRUE(noFiles());
}

} // namespace
