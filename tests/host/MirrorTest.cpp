#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::psnr;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using nlohmann::json;

// Display matrices that mirror the picture, shown as a player shows them. ffmpeg 5.1 turns such
// pictures without mirroring them, so the reference is ffmpeg's decode with the matrix ignored
// and the mirror applied by filter.
namespace {

struct Mirror {
    const char* file;
    const char* filter; // what the matrix does, as ffmpeg's filters
    int width;
    int height;
};

std::ostream& operator<<(std::ostream& stream, const Mirror& mirror) {
    return stream << mirror.file;
}

class MirrorTest : public testing::TestWithParam<Mirror> {
protected:
    static QString fixture(const char* name) { return QString::fromStdString(mediaFixture(name)); }
    QString path(const char* name) const { return directory.filePath(name); }

    // Frame 12 of a file decoded by ffmpeg, its matrix ignored and `filter` applied.
    QByteArray frame12(const QString& file, bool ignoreMatrix, const QString& filter) const {
        const QString picture = path("reference.png");
        QStringList arguments{"-nostdin", "-v", "error", "-y"};
        if (ignoreMatrix)
            arguments << "-noautorotate";
        arguments << "-i" << file << "-vf"
                  << "select=eq(n\\,12)," + filter << "-frames:v"
                  << "1" << picture;
        const auto run = runTool("ffmpeg", arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return rgbPixels(picture);
    }

    static json value(const QStringList& arguments, const char* key) {
        const HostRun run = runHost(QStringList{"-q"} + arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        if (run.exitCode != 0)
            return nullptr;
        return json::parse(run.outputLines().last().toStdString()).at(key);
    }

    QTemporaryDir directory;
};

TEST_P(MirrorTest, AThumbnailIsMirroredAsThePlayerShowsIt) {
    const Mirror& mirror = GetParam();
    const json taken = value(
        {"thumbnail", fixture(mirror.file), "--output=" + path("t.png"), "--at=480"}, "thumbnail");
    ASSERT_TRUE(taken.is_object());
    EXPECT_EQ(taken.at("width"), mirror.width);
    EXPECT_EQ(taken.at("height"), mirror.height);
    EXPECT_GT(psnr(rgbPixels(path("t.png")), frame12(fixture(mirror.file), true, mirror.filter)),
              50);
}

TEST_P(MirrorTest, AnExportIsMirroredWithNoMatrixLeft) {
    const Mirror& mirror = GetParam();
    ASSERT_TRUE(
        value({"export", fixture(mirror.file), "--output=" + path("e.mp4")}, "export").is_object());
    const auto probed =
        runTool("ffprobe", {"-v", "error", "-show_streams", "-of", "json", path("e.mp4")});
    const json video = json::parse(probed.output.toStdString()).at("streams").at(0);
    EXPECT_EQ(video.at("width"), mirror.width);
    EXPECT_EQ(video.at("height"), mirror.height);
    EXPECT_FALSE(video.contains("side_data_list"));
    EXPECT_GT(psnr(frame12(path("e.mp4"), false, "null"),
                   frame12(fixture(mirror.file), true, mirror.filter)),
              30);
}

INSTANTIATE_TEST_SUITE_P(Matrices, MirrorTest,
                         testing::Values(Mirror{"mirror_h.mp4", "hflip", 160, 90},
                                         Mirror{"mirror_transposed.mp4", "transpose=cclock_flip",
                                                90, 160}));

} // namespace
