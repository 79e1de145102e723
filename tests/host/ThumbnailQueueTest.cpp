#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <map>
#include <nlohmann/json.hpp>

using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;
using EditorService::Testing::writeFile;

// Eight large thumbnails of a script with no job limit all queue on the task controller's one
// thread at once: the last waits longer than its one-second limit, and lives on the values it
// emits while it waits.
TEST(ThumbnailQueueTest, ThumbnailsWaitingForTheirTurnOutliveTheirTimeLimits) {
    QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const int count = 8;
    QByteArray script;
    for (int i = 0; i < count; ++i) {
        script += "thumbnail; " + QByteArray::fromStdString(mediaFixture("h264_aac.mp4"))
                  + "; --output=" + directory.filePath(QStringLiteral("%1.png").arg(i)).toUtf8()
                  + "; --preset-frame-size=3840:2160; --timeout=1\n";
    }
    const HostRun run =
        runHost({"script", writeFile(directory.filePath("batch.reel"), script), "--jobs=0"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();

    int queued = 0;
    std::map<std::string, bool> taken;
    for (const auto& line : run.outputLines()) {
        const auto state = nlohmann::json::parse(line.toStdString()).at("thumbnail");
        const std::string output = state.at("output");
        if (state.contains("frame_ms")) {
            taken[output] = true;
            continue;
        }
        ++queued;
        EXPECT_EQ(state.at("queued"), true) << line.toStdString();
        EXPECT_FALSE(taken[output]) << line.toStdString();
        EXPECT_GE(state.at("ahead").get<int>(), 0);
        EXPECT_LT(state.at("ahead").get<int>(), count - 1);
    }
    EXPECT_EQ(taken.size(), std::size_t(count));
    EXPECT_GT(queued, 0);
    for (int i = 0; i < count; ++i) {
        const ToolRun probe =
            runTool("ffprobe", {"-v", "error", "-show_entries", "stream=width,height", "-of",
                                "csv=p=0", directory.filePath(QStringLiteral("%1.png").arg(i))});
        EXPECT_EQ(probe.output.trimmed(), "3840,2160") << i;
    }
}
