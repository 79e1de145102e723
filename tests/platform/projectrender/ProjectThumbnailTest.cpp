#include "platform/projectrender/ProjectThumbnail.h"
#include "platform/av/MediaError.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/FailedWith.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using EditorService::Testing::RunningEngine;

namespace {

// A colour for 1600 ms at 25 frames a second; its pictures are read back in the host's tests.
class ProjectThumbnailTest : public testing::Test {
protected:
    Thumbnail::Request request(std::int64_t atMilliseconds) {
        Thumbnail::Request request;
        request.path = directory.filePath("edit.json");
        request.output = directory.filePath("out.png");
        request.atMilliseconds = atMilliseconds;
        QFile file(request.path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(R"({"reelsmith_project": 1,
          "output": {"width": 64, "height": 48, "frame_rate": "25/1"},
          "tracks": [{"type": "video", "clips": [{"color": "#ff0000", "duration_ms": 1600}]}]})");
        return request;
    }

    RunningEngine engine;
    QTemporaryDir directory;
};

// 610 ms falls inside frame 15: the thumbnail is frame 16, as a range from there starts.
TEST_F(ProjectThumbnailTest, ATimeTakesTheFirstFrameThatStartsAtOrAfterIt) {
    const Thumbnail::Result result = Velmor::Render::drawProjectThumbnail(request(610));
    EXPECT_EQ(result.frameMilliseconds, 640);
    EXPECT_EQ(result.width, 64);
    EXPECT_EQ(result.height, 48);
    EXPECT_TRUE(QFile::exists(directory.filePath("out.png")));
}

TEST_F(ProjectThumbnailTest, ATimePastTheLastFrameFails) {
    const Thumbnail::Request late = request(1570);
    EXPECT_THAT([&] { Velmor::Render::drawProjectThumbnail(late); },
                FailedWith<Velmor::AV::MediaError>("Time 1570 ms is past the end of "
                                                   + late.path.toStdString() + " (1600 ms)"));
    EXPECT_FALSE(QFile::exists(late.output));
}

} // namespace
