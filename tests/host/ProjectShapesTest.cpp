#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::HostRun;
using EditorService::Testing::psnr;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::writeFile;

// A project's clips shown as their files are meant to be seen: a phone's clip upright, an
// anamorphic one fitted by its display shape. The reference is ffmpeg's picture of the file
// (turned by ffmpeg, stretched by its scaler) fitted into the project's frame.
namespace {

struct ClipShape {
    const char* file;
    // ffmpeg's filters that fit the file's picture into the 256x144 frame.
    const char* fitted;
};

std::ostream& operator<<(std::ostream& stream, const ClipShape& shape) {
    return stream << shape.file;
}

class ProjectShapesTest : public testing::TestWithParam<ClipShape> {
protected:
    QString path(const char* name) const { return directory.filePath(name); }

    QString project() const {
        const std::string media = MEDIA_FIXTURES_DIR;
        return writeFile(path("edit.json"), QByteArray::fromStdString(
                                                R"({"reelsmith_project": 1,
                  "output": {"width": 256, "height": 144, "frame_rate": "25/1"},
                  "tracks": [{"type": "video", "clips": [{"source": ")"
                                                + media + "/" + GetParam().file + R"("}]}]})"));
    }

    // Frame 12 of a file as ffmpeg decodes it, with `filters` applied.
    QByteArray frame12(const QString& file, const QString& filters) const {
        const QString picture = path("reference.png");
        const auto run =
            runTool("ffmpeg", {"-nostdin", "-v", "error", "-y", "-i", file, "-vf",
                               "select=eq(n\\,12)," + filters, "-frames:v", "1", picture});
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return rgbPixels(picture);
    }

    QByteArray reference() const {
        return frame12(QString::fromStdString(MEDIA_FIXTURES_DIR) + "/" + GetParam().file,
                       GetParam().fitted);
    }

    QTemporaryDir directory;
};

TEST_P(ProjectShapesTest, AThumbnailShowsTheClipInItsDisplayShape) {
    const HostRun run =
        runHost({"-q", "thumbnail", project(), "--output=" + path("t.png"), "--at=480"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_GT(psnr(rgbPixels(path("t.png")), reference()), 25);
}

TEST_P(ProjectShapesTest, AnExportShowsTheClipInItsDisplayShape) {
    const HostRun run = runHost({"-q", "export", project(), "--output=" + path("e.mp4")});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_GT(psnr(frame12(path("e.mp4"), "null"), reference()), 25);
}

INSTANTIATE_TEST_SUITE_P(Clips, ProjectShapesTest,
                         testing::Values(ClipShape{"rotate90.mp4", "scale=82:144,pad=256:144:86:0"},
                                         ClipShape{"sar_64_45.mp4", "scale=256:144,setsar=1"}));

} // namespace
