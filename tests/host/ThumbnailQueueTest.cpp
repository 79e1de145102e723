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

// Sixty thumbnails of a script with no job limit all queue on the task controller's one thread
// at once: the last ones wait longer than their one-second limit, and live on the values they
// emit while they wait. Each is small enough to take far less than the limit on a busy machine,
// and the runtime starts first, so that its start counts against no limit.
TEST(ThumbnailQueueTest, ThumbnailsWaitingForTheirTurnOutliveTheirTimeLimits) {
    QTemporaryDir directory;
    ASSERT_TRUE(directory.isValid());
    const int count = 60;
    QByteArray script;
    for (int i = 0; i < count; ++i) {
        script += "thumbnail; " + QByteArray::fromStdString(mediaFixture("h264_aac.mp4"))
                  + "; --output=" + directory.filePath(QStringLiteral("%1.png").arg(i)).toUtf8()
                  + "; --preset-frame-size=1280:720; --timeout=1\n";
    }
    const HostRun run = runHost(
        {"--hot-start", "script", writeFile(directory.filePath("batch.reel"), script), "--jobs=0"});
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
    // The first and the last picture, read back by ffprobe.
    for (const int i : {0, count - 1}) {
        const ToolRun probe =
            runTool("ffprobe", {"-v", "error", "-show_entries", "stream=width,height", "-of",
                                "csv=p=0", directory.filePath(QStringLiteral("%1.png").arg(i))});
        EXPECT_EQ(probe.output.trimmed(), "1280,720") << i;
    }
}
