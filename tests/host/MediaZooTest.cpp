#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/host/ZooReference.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::decodedFrame;
using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::psnr;
using EditorService::Testing::rgbPixels;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ZooReference;
using nlohmann::json;

// The zoo: files in the shapes real users have (phone rotation, anamorphic pixels, broadcast
// and DVD timestamps, open GOPs, stills, sound alone, cover art), each probed, thumbnailed and
// exported by the built host, every result read back by ffprobe and ffmpeg.
namespace {

// The same picture after a lossy encode, or a scaler of another make.
constexpr double samePicture = 30;

class MediaZooTest : public testing::Test {
protected:
    static QString fixture(const char* name) { return QString::fromStdString(mediaFixture(name)); }

    QString output(const char* name) const { return directory.filePath(name); }

    // The one value of a service that succeeded; null when it failed.
    static json value(const QStringList& arguments, const char* key) {
        const HostRun run = runHost(QStringList{"-q"} + arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        if (run.exitCode != 0 || run.outputLines().isEmpty())
            return nullptr;
        return json::parse(run.outputLines().last().toStdString()).at(key);
    }

    json thumbnail(const QString& path, int atMs) const {
        return value({"thumbnail", path, "--output=" + output("thumbnail.png"), "--overwrite",
                      QStringLiteral("--at=%1").arg(atMs)},
                     "thumbnail");
    }

    json exported(const QString& path, QStringList options) const {
        options << "--overwrite";
        options.prepend("--output=" + output("export.mp4"));
        options.prepend(path);
        options.prepend("export");
        return value(options, "export");
    }

    static json probed(const QString& path) {
        const auto run = runTool("ffprobe", {"-v", "error", "-count_packets", "-show_format",
                                             "-show_streams", "-of", "json", path});
        return json::parse(run.output.toStdString());
    }

    QTemporaryDir directory;
};

// Probe.

TEST_F(MediaZooTest, ProbeReportsTheStoredSizeRotationAndPixelShapeAsFfprobeDoes) {
    for (const char* name :
         {"rotate90.mp4", "rotate180.mp4", "rotate270.mp4", "sar_64_45.mp4", "dvd.mpg"}) {
        SCOPED_TRACE(name);
        const json ours = value({"probe", fixture(name)}, "probe");
        ASSERT_TRUE(ours.is_object());
        const json reference = ZooReference(fixture(name)).probe();
        for (const json& stream : reference.at("streams")) {
            if (stream.at("codec_type") != "video")
                continue;
            const json& mine = ours.at("streams").at(stream.at("index").get<int>());
            EXPECT_EQ(mine.at("width"), stream.at("width"));
            EXPECT_EQ(mine.at("height"), stream.at("height"));
            EXPECT_EQ(mine.at("sample_aspect_ratio"), stream.value("sample_aspect_ratio", "1:1"));
            int rotation = 0;
            for (const json& side : stream.value("side_data_list", json::array()))
                rotation = side.value("rotation", rotation);
            EXPECT_EQ(mine.at("rotation"), rotation);
        }
    }
}

TEST_F(MediaZooTest, ProbeReportsTheDurationOfAFileWhoseTimestampsStartLateAsFfprobeDoes) {
    const json ours = value({"probe", fixture("start_10s.mp4")}, "probe");
    ASSERT_TRUE(ours.is_object());
    EXPECT_EQ(ours.at("duration_ms"), 13000);
}

// Thumbnails: the frame on screen, upright and in shape.

struct Moment {
    const char* file;
    int atMs;
};

std::ostream& operator<<(std::ostream& stream, const Moment& moment) {
    return stream << moment.file << " at " << moment.atMs << " ms";
}

class ZooThumbnailTest : public MediaZooTest, public testing::WithParamInterface<Moment> {};

TEST_P(ZooThumbnailTest, IsTheFrameOnScreenAtTheTimeUprightInSquarePixels) {
    const Moment& moment = GetParam();
    const ZooReference reference(fixture(moment.file));
    const json taken = thumbnail(fixture(moment.file), moment.atMs);
    ASSERT_TRUE(taken.is_object());
    const int index = reference.frameOnScreenAt(moment.atMs);
    EXPECT_NEAR(taken.at("frame_ms").get<double>(), reference.frameTimes().at(index), 1);
    if (index > 0) {
        EXPECT_LE(taken.at("frame_ms").get<int>(), moment.atMs);
    }
    const int width = taken.at("width");
    const int height = taken.at("height");
    const QByteArray ours = rgbPixels(output("thumbnail.png"));
    ASSERT_EQ(ours.size(), width * height * 3);
    EXPECT_GT(psnr(ours, reference.pixels(index, width, height)), samePicture);
}

// The broadcast and DVD timelines, late starts, open GOPs with B-frames, in every container.
INSTANTIATE_TEST_SUITE_P(Timelines, ZooThumbnailTest,
                         testing::Values(Moment{"h264_aac.mp4", 0}, Moment{"h264_aac.mp4", 1530},
                                         Moment{"bframes.mov", 990}, Moment{"bframes.mov", 2500},
                                         Moment{"open_gop.mkv", 0}, Moment{"open_gop.mkv", 1000},
                                         Moment{"open_gop.mkv", 2980}, Moment{"open_gop.ts", 0},
                                         Moment{"open_gop.ts", 999}, Moment{"open_gop.ts", 2000},
                                         Moment{"open_gop.ts", 2990}, Moment{"dvd.mpg", 0},
                                         Moment{"dvd.mpg", 300}, Moment{"dvd.mpg", 990},
                                         Moment{"start_10s.mp4", 6500},
                                         Moment{"start_10s.mp4", 10000},
                                         Moment{"start_10s.mp4", 12345}));

INSTANTIATE_TEST_SUITE_P(Shapes, ZooThumbnailTest,
                         testing::Values(Moment{"rotate90.mp4", 480}, Moment{"rotate180.mp4", 480},
                                         Moment{"rotate270.mp4", 480}, Moment{"sar_64_45.mp4", 480},
                                         Moment{"dvd.mpg", 500}));

INSTANTIATE_TEST_SUITE_P(Stills, ZooThumbnailTest,
                         testing::Values(Moment{"still.jpg", 0}, Moment{"still.jpg", 20},
                                         Moment{"still.png", 5000}, Moment{"still.webp", 0},
                                         Moment{"still.webp", 5000}, Moment{"still.bmp", 20},
                                         Moment{"still.tiff", 5000}));

TEST_F(MediaZooTest, ThumbnailsOfShapedPicturesHaveTheirDisplaySize) {
    const struct {
        const char* file;
        int width;
        int height;
    } shapes[] = {{"rotate90.mp4", 90, 160},
                  {"rotate180.mp4", 160, 90},
                  {"rotate270.mp4", 90, 160},
                  {"sar_64_45.mp4", 256, 144},
                  {"dvd.mpg", 768, 576}};
    for (const auto& shape : shapes) {
        SCOPED_TRACE(shape.file);
        const json taken = thumbnail(fixture(shape.file), 0);
        ASSERT_TRUE(taken.is_object());
        EXPECT_EQ(taken.at("width"), shape.width);
        EXPECT_EQ(taken.at("height"), shape.height);
    }
}

TEST_F(MediaZooTest, ThumbnailsOfSoundAloneFailWithNoVideoStream) {
    for (const char* name : {"tone.mp3", "cover_art.mp3", "cover_art.m4a"}) {
        SCOPED_TRACE(name);
        const HostRun run =
            runHost({"-q", "thumbnail", fixture(name), "--output=" + output("thumbnail.png"),
                     "--overwrite", "--at=0"});
        EXPECT_NE(run.exitCode, 0);
        EXPECT_TRUE(run.errors.contains(("No video stream in " + fixture(name)).toUtf8()))
            << run.errors.toStdString();
    }
}

// Exports.

struct Span {
    const char* file;
    int fromMs;
    int toMs;
};

std::ostream& operator<<(std::ostream& stream, const Span& span) {
    return stream << span.file << " " << span.fromMs << ":" << span.toMs;
}

class ZooRangeTest : public MediaZooTest, public testing::WithParamInterface<Span> {};

TEST_P(ZooRangeTest, StartsOnTheFirstFrameAtOrAfterItsStartAndKeepsEveryFrameOfIt) {
    const Span& span = GetParam();
    const ZooReference reference(fixture(span.file));
    const json done = exported(fixture(span.file),
                               {QStringLiteral("--range=%1:%2").arg(span.fromMs).arg(span.toMs)});
    ASSERT_TRUE(done.is_object());
    const int first = reference.firstFrameFrom(span.fromMs);
    const int end = reference.firstFrameFrom(span.toMs);
    const int frames = (end < 0 ? int(reference.frameTimes().size()) : end) - first;
    const json written = probed(output("export.mp4"));
    EXPECT_EQ(written.at("streams").at(0).at("nb_read_packets"), std::to_string(frames));
    const int width = done.at("video").at("width");
    const int height = done.at("video").at("height");
    EXPECT_GT(psnr(decodedFrame(output("export.mp4"), 0), reference.pixels(first, width, height)),
              samePicture);
}

INSTANTIATE_TEST_SUITE_P(
    Timelines, ZooRangeTest,
    testing::Values(Span{"h264_aac.mp4", 930, 1530}, Span{"bframes.mov", 1010, 2000},
                    Span{"open_gop.mkv", 930, 2030}, Span{"open_gop.ts", 500, 1500},
                    Span{"open_gop.ts", 930, 2990}, Span{"dvd.mpg", 300, 700},
                    Span{"start_10s.mp4", 10500, 12500}, Span{"start_10s.mp4", 6000, 12000}));

struct Shape {
    const char* file;
    const char* options;
    int width;
    int height;
    // The picture inside the frame, when the preset's size boxes it.
    int pictureWidth;
    int pictureHeight;
};

std::ostream& operator<<(std::ostream& stream, const Shape& shape) {
    return stream << shape.file << " " << shape.options;
}

class ZooShapeTest : public MediaZooTest, public testing::WithParamInterface<Shape> {};

TEST_P(ZooShapeTest, ExportsUprightInSquarePixelsWithNoRotationLeft) {
    const Shape& shape = GetParam();
    const ZooReference reference(fixture(shape.file));
    QStringList options;
    if (*shape.options)
        options << shape.options;
    const json done = exported(fixture(shape.file), options);
    ASSERT_TRUE(done.is_object());
    const json written = probed(output("export.mp4"));
    const json& video = written.at("streams").at(0);
    EXPECT_EQ(video.at("width"), shape.width);
    EXPECT_EQ(video.at("height"), shape.height);
    EXPECT_FALSE(video.contains("side_data_list"));
    const std::string pixel = video.value("sample_aspect_ratio", "1:1");
    EXPECT_TRUE(pixel == "1:1" || pixel == "N/A") << pixel;
    const QByteArray expected =
        reference.pixels(12, shape.pictureWidth, shape.pictureHeight, shape.width, shape.height);
    EXPECT_GT(psnr(decodedFrame(output("export.mp4"), 12), expected), samePicture);
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, ZooShapeTest,
    testing::Values(Shape{"rotate90.mp4", "", 90, 160, 90, 160},
                    Shape{"rotate180.mp4", "", 160, 90, 160, 90},
                    Shape{"rotate270.mp4", "--preset-frame-size=180:320", 180, 320, 180, 320},
                    Shape{"sar_64_45.mp4", "", 256, 144, 256, 144},
                    Shape{"sar_64_45.mp4", "--preset=720p", 1280, 720, 1280, 720},
                    Shape{"dvd.mpg", "", 768, 576, 768, 576},
                    Shape{"dvd.mpg", "--preset=720p", 1280, 720, 960, 720}));

TEST_F(MediaZooTest, SoundAloneExportsAnAacOnlyMp4AtThePresetsAudioRate) {
    for (const char* name :
         {"tone.mp3", "tone.m4a", "tone.wav", "tone.flac", "cover_art.mp3", "cover_art.m4a"}) {
        SCOPED_TRACE(name);
        const json done = exported(fixture(name), {"--preset-audio-bitrate=64000"});
        ASSERT_TRUE(done.is_object());
        EXPECT_TRUE(done.at("video").is_null());
        const json written = probed(output("export.mp4"));
        EXPECT_EQ(written.at("format").at("format_name"), "mov,mp4,m4a,3gp,3g2,mj2");
        ASSERT_EQ(written.at("streams").size(), 1u);
        const json& audio = written.at("streams").at(0);
        EXPECT_EQ(audio.at("codec_name"), "aac");
        EXPECT_NEAR(std::stod(audio.at("duration").get<std::string>()), 1.0, 0.1);
        EXPECT_NEAR(std::stod(audio.at("bit_rate").get<std::string>()), 64000, 16000);
    }
}

TEST_F(MediaZooTest, ARangeOfSoundWithCoverArtExportsThatSpanOfTheSoundAlone) {
    for (const char* name : {"cover_art.mp3", "cover_art.m4a"}) {
        SCOPED_TRACE(name);
        const json done = exported(fixture(name), {"--range=200:700"});
        ASSERT_TRUE(done.is_object());
        const json written = probed(output("export.mp4"));
        ASSERT_EQ(written.at("streams").size(), 1u);
        const json& audio = written.at("streams").at(0);
        EXPECT_EQ(audio.at("codec_name"), "aac");
        EXPECT_NEAR(std::stod(audio.at("duration").get<std::string>()), 0.5, 0.05);
    }
}

} // namespace
