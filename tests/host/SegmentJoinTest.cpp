#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <nlohmann/json.hpp>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::psnr;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;
using Json = nlohmann::json;

namespace {

// Ten seconds of 25 frames, key frames every 2 s, a 440 Hz tone: its four parts start at
// frames 0, 62, 125 and 187, none of them a key frame of the input.
const QString input = QString::fromStdString(mediaFixture("ten_seconds.mp4"));
constexpr int width = 320;
constexpr int height = 240;

QStringList segment(const QString& folder, const QString& index, const QStringList& more = {}) {
    return QStringList{"segment", input, "--index=" + index, "--count=4", "--output=" + folder}
           + more;
}

Json lastValue(const HostRun& run) {
    const auto lines = run.outputLines();
    return lines.isEmpty() ? Json() : Json::parse(lines.last().toStdString());
}

// The luma planes of every frame, as ffmpeg decodes them.
std::vector<QByteArray> lumaFrames(const QString& file) {
    const ToolRun run =
        runTool(QStringLiteral("ffmpeg"), {"-v", "error", "-i", file, "-map", "0:v", "-f",
                                           "rawvideo", "-pix_fmt", "gray", "-"});
    std::vector<QByteArray> frames;
    const int size = width * height;
    for (int at = 0; at + size <= run.output.size(); at += size)
        frames.push_back(run.output.mid(at, size));
    return frames;
}

// The sound as ffmpeg decodes it, mixed to one channel of 16-bit samples.
std::vector<int> samples(const QString& file) {
    const ToolRun run = runTool(QStringLiteral("ffmpeg"), {"-v", "error", "-i", file, "-map", "0:a",
                                                           "-ac", "1", "-f", "s16le", "-"});
    std::vector<int> values;
    for (int at = 0; at + 1 < run.output.size(); at += 2)
        values.push_back(qint16(quint8(run.output[at]) | (quint8(run.output[at + 1]) << 8)));
    return values;
}

// Where each stream ends, in seconds, as ffprobe reads it: "video" and "audio".
std::map<std::string, double> streamEnds(const QString& file) {
    const ToolRun run = runTool(QStringLiteral("ffprobe"),
                                {"-v", "error", "-show_entries",
                                 "stream=codec_type,start_time,duration", "-of", "json", file});
    std::map<std::string, double> ends;
    const Json probed = Json::parse(run.output.toStdString());
    for (const Json& stream : probed.at("streams")) {
        ends[stream.at("codec_type").get<std::string>()] =
            std::stod(stream.at("start_time").get<std::string>())
            + std::stod(stream.at("duration").get<std::string>());
    }
    return ends;
}

int countedFrames(const QString& file) {
    const ToolRun run = runTool(QStringLiteral("ffprobe"),
                                {"-v", "error", "-count_frames", "-select_streams", "v:0",
                                 "-show_entries", "stream=nb_read_frames", "-of", "csv=p=0", file});
    return run.output.trimmed().toInt();
}

double meanPsnr(const std::vector<QByteArray>& frames, const std::vector<QByteArray>& reference) {
    double sum = 0;
    for (std::size_t i = 0; i < frames.size(); ++i)
        sum += psnr(frames[i], reference.at(i));
    return sum / double(frames.size());
}

// The parts, their join and a single export of the same input, made once for every test.
// The checks read what it made through its static members.
class SegmentJoinTest : public testing::Test {
public:
    static void SetUpTestSuite() {
        place = std::make_unique<QTemporaryDir>();
        for (const QString index : {"0", "1", "2", "3", "audio"}) {
            const HostRun run = runHost(segment(parts(), index));
            ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
            values.push_back(lastValue(run));
        }
        const HostRun joinRun = runHost({"join", parts(), "--output=" + joined()});
        ASSERT_EQ(joinRun.exitCode, 0) << joinRun.errors.toStdString();
        joinValue = lastValue(joinRun);
        const HostRun single = runHost({"export", input, "--output=" + exported()});
        ASSERT_EQ(single.exitCode, 0) << single.errors.toStdString();
    }
    static void TearDownTestSuite() {
        place.reset();
        values.clear();
    }

    static QString path(const QString& name) { return place->filePath(name); }
    static QString parts() { return path(QStringLiteral("parts")); }
    static QString joined() { return path(QStringLiteral("joined.mp4")); }
    static QString exported() { return path(QStringLiteral("single.mp4")); }

    static std::unique_ptr<QTemporaryDir> place;
    static std::vector<Json> values;
    static Json joinValue;
};

std::unique_ptr<QTemporaryDir> SegmentJoinTest::place;
std::vector<Json> SegmentJoinTest::values;
Json SegmentJoinTest::joinValue;

} // namespace

namespace {

using Made = SegmentJoinTest;

void eachPartEndsWithItsSegmentValue() {
    const std::pair<std::int64_t, std::int64_t> expected[] = {
        {0, 62}, {62, 63}, {125, 62}, {187, 63}, {0, 250}};
    ASSERT_EQ(Made::values.size(), 5u);
    for (std::size_t i = 0; i < Made::values.size(); ++i) {
        const Json& value = Made::values[i].at("segment");
        EXPECT_EQ(value.at("dir"), Made::parts().toStdString());
        EXPECT_EQ(value.at("count"), 4);
        EXPECT_EQ(value.at("first_frame"), expected[i].first);
        EXPECT_EQ(value.at("frames"), expected[i].second);
        EXPECT_GT(value.at("bytes").get<std::int64_t>(), 0);
        EXPECT_LE(value.at("started_ms"), value.at("finished_ms"));
    }
    EXPECT_EQ(Made::values[4].at("segment").at("index"), "audio");
    EXPECT_EQ(Made::values[3].at("segment").at("index"), 3);
}

void theJoinEndsWithExportsDoneValue() {
    const Json& value = Made::joinValue.at("export");
    EXPECT_EQ(value.at("done"), true);
    EXPECT_EQ(value.at("output"), Made::joined().toStdString());
    EXPECT_EQ(value.at("input"), input.toStdString());
    EXPECT_EQ(value.at("frames"), 250);
    EXPECT_EQ(value.at("bytes"), QFileInfo(Made::joined()).size());
    EXPECT_EQ(value.at("video").at("codec"), "h264");
    EXPECT_EQ(value.at("audio").at("codec"), "aac");
}

void theJoinedFileHasTheSingleExportsFramesAndDuration() {
    EXPECT_EQ(countedFrames(Made::joined()), 250);
    EXPECT_EQ(countedFrames(Made::joined()), countedFrames(Made::exported()));
    const auto ends = streamEnds(Made::joined());
    const auto single = streamEnds(Made::exported());
    EXPECT_NEAR(ends.at("video"), single.at("video"), 0.001);
    EXPECT_NEAR(ends.at("audio"), single.at("audio"), 0.001);
    // Sound and pictures end within one frame.
    EXPECT_LE(std::abs(ends.at("video") - ends.at("audio")), 0.04);
}

void theIndexIsAtTheFront() {
    QFile file(Made::joined());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray head = file.read(64);
    EXPECT_EQ(head.mid(4, 4), "ftyp");
    EXPECT_EQ(head.mid(int(quint8(head[3])) + 4, 4), "moov");
}

void eachFrameIsTheSingleExportsFrameOfTheSameNumber() {
    const auto frames = lumaFrames(Made::joined());
    const auto single = lumaFrames(Made::exported());
    ASSERT_EQ(frames.size(), 250u);
    ASSERT_EQ(frames.size(), single.size());
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const double same = psnr(frames[i], single[i]);
        EXPECT_GE(same, 35) << "frame " << i;
        if (i > 0) {
            EXPECT_GT(same, psnr(frames[i], single[i - 1])) << "frame " << i;
        }
        if (i + 1 < frames.size()) {
            EXPECT_GT(same, psnr(frames[i], single[i + 1])) << "frame " << i;
        }
    }
}

void theJoinedFileIsAsCloseToTheSourceAsTheSingleExport() {
    const auto source = lumaFrames(input);
    const double joinedQuality = meanPsnr(lumaFrames(Made::joined()), source);
    const double singleQuality = meanPsnr(lumaFrames(Made::exported()), source);
    EXPECT_NEAR(joinedQuality, singleQuality, 0.2);
}

void theToneRunsThroughTheSeamsWithoutAGapOrAClick() {
    const std::vector<int> sound = samples(Made::joined());
    // 10 s at 44.1 kHz, give or take a frame of the encoder.
    ASSERT_NEAR(double(sound.size()), 441000, 2048);
    // A 440 Hz sine of amplitude A moves at most 2 pi 440 / 44100 A a sample; a click jumps far
    // more, a gap holds still.
    int peak = 0;
    for (const int value : sound)
        peak = std::max(peak, std::abs(value));
    const double largestStep = 2 * M_PI * 440 / 44100 * peak;
    std::size_t still = 0;
    for (std::size_t i = 2048; i + 2048 < sound.size(); ++i) {
        EXPECT_LE(std::abs(sound[i] - sound[i - 1]), 1.5 * largestStep + 64) << "sample " << i;
        still = std::abs(sound[i]) < peak / 8 ? still + 1 : 0;
        EXPECT_LT(still, 44u) << "sample " << i;
        if (testing::Test::HasFailure())
            return;
    }
}

} // namespace

TEST_F(SegmentJoinTest, PartsAndJoinEndWithTheirValuesAndTheJoinHasTheSingleExportsFrames) {
    eachPartEndsWithItsSegmentValue();
    theJoinEndsWithExportsDoneValue();
    theJoinedFileHasTheSingleExportsFramesAndDuration();
    theIndexIsAtTheFront();
}

TEST_F(SegmentJoinTest, NoSeamInThePicturesOrTheSound) {
    eachFrameIsTheSingleExportsFrameOfTheSameNumber();
    theJoinedFileIsAsCloseToTheSourceAsTheSingleExport();
    theToneRunsThroughTheSeamsWithoutAGapOrAClick();
}

TEST_F(SegmentJoinTest, SkipExistingRemakesOnlyALostPart) {
    QTemporaryDir copy;
    const QString folder = copy.filePath(QStringLiteral("parts"));
    QDir().mkpath(folder);
    for (const QString& name : QDir(parts()).entryList(QDir::Files))
        QFile::copy(QDir(parts()).filePath(name), QDir(folder).filePath(name));
    QFile::remove(QDir(folder).filePath(QStringLiteral("segment-0002.mp4")));
    for (const QString index : {"0", "1", "2", "3", "audio"}) {
        const HostRun run = runHost(segment(folder, index, {"--skip-existing"}));
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
        const Json value = lastValue(run).at("segment");
        EXPECT_EQ(value.contains("skipped"), index != "2") << index.toStdString();
    }
    const QString output = copy.filePath(QStringLiteral("joined.mp4"));
    const HostRun join = runHost({"join", folder, "--output=" + output});
    ASSERT_EQ(join.exitCode, 0) << join.errors.toStdString();
    EXPECT_EQ(countedFrames(output), 250);
}

namespace {

// When each packet of the video shows, in ffprobe's words, earliest first.
QStringList showTimes(const QString& file) {
    const ToolRun run = runTool(QStringLiteral("ffprobe"),
                                {"-v", "error", "-select_streams", "v:0", "-show_entries",
                                 "packet=pts_time", "-of", "csv=p=0", file});
    QStringList times = QString::fromUtf8(run.output).split('\n', Qt::SkipEmptyParts);
    std::sort(times.begin(), times.end(),
              [](const QString& a, const QString& b) { return a.toDouble() < b.toDouble(); });
    return times;
}

} // namespace

TEST(SegmentJoinVariableRateTest, PartsOfAVariableRateInputWithoutSoundKeepTheirTimes) {
    QTemporaryDir place;
    const QString vfr = QString::fromStdString(mediaFixture("vfr.mp4"));
    const QString folder = place.filePath(QStringLiteral("parts"));
    for (const QString index : {"0", "1", "2", "audio"}) {
        const HostRun run =
            runHost({"segment", vfr, "--index=" + index, "--count=3", "--output=" + folder});
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    }
    // The sound of an input without sound is a record alone.
    EXPECT_FALSE(QFileInfo::exists(QDir(folder).filePath(QStringLiteral("segment-audio.mp4"))));
    const QString joinedFile = place.filePath(QStringLiteral("joined.mp4"));
    const HostRun join = runHost({"join", folder, "--output=" + joinedFile});
    ASSERT_EQ(join.exitCode, 0) << join.errors.toStdString();
    EXPECT_TRUE(lastValue(join).at("export").at("audio").is_null());

    const QStringList times = showTimes(joinedFile);
    ASSERT_EQ(times.size(), 150);
    EXPECT_EQ(times, showTimes(vfr));
    EXPECT_EQ(times.mid(49, 4), (QStringList{"1.975000", "2.000000", "2.055000", "2.080000"}));
}

TEST(SegmentJoinProjectTest, ACutInsideATransitionMovesToItsNearerEnd) {
    QTemporaryDir place;
    // 5 s: the fade from 2 s to 3 s holds frames 50 to 74, and the even cut, 62, falls inside.
    const QString project = place.filePath(QStringLiteral("project.json"));
    EditorService::Testing::writeFile(project, R"({"reelsmith_project": 1,
 "output": {"width": 320, "height": 180, "frame_rate": "25/1"},
 "tracks": [{"type": "video", "clips": [
   {"color": "#203040", "duration_ms": 3000},
   {"color": "#a04020", "duration_ms": 3000,
    "transition": {"type": "fade", "duration_ms": 1000}}]}]})");
    const QString folder = place.filePath(QStringLiteral("parts"));
    std::vector<Json> parts;
    for (const QString index : {"0", "1", "audio"}) {
        const HostRun run =
            runHost({"segment", project, "--index=" + index, "--count=2", "--output=" + folder});
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
        parts.push_back(lastValue(run).at("segment"));
    }
    EXPECT_EQ(parts[0].at("frames"), 50);
    EXPECT_EQ(parts[1].at("first_frame"), 50);
    EXPECT_EQ(parts[1].at("frames"), 75);
    const QString joinedFile = place.filePath(QStringLiteral("joined.mp4"));
    const HostRun join = runHost({"join", folder, "--output=" + joinedFile});
    ASSERT_EQ(join.exitCode, 0) << join.errors.toStdString();
    EXPECT_EQ(countedFrames(joinedFile), 125);
    EXPECT_NEAR(streamEnds(joinedFile).at("audio"), 5.0, 0.04);
}

TEST(SegmentJoinHevcTest, HevcPartsJoinIntoOneStreamThatDecodesWhole) {
    QTemporaryDir place;
    const QString folder = place.filePath(QStringLiteral("parts"));
    for (const QString index : {"0", "1", "audio"}) {
        const HostRun run =
            runHost({"segment", input, "--index=" + index, "--count=2", "--range=0:4000",
                     "--preset-video-codec=CODEC_ID_HEVC", "--output=" + folder});
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    }
    const QString joinedFile = place.filePath(QStringLiteral("joined.mp4"));
    const HostRun join = runHost({"join", folder, "--output=" + joinedFile});
    ASSERT_EQ(join.exitCode, 0) << join.errors.toStdString();
    const ToolRun probe =
        runTool(QStringLiteral("ffprobe"),
                {"-v", "error", "-select_streams", "v:0", "-show_entries",
                 "stream=codec_name,codec_tag_string", "-of", "csv=p=0", joinedFile});
    EXPECT_EQ(probe.output.trimmed(), "hevc,hvc1");
    EXPECT_EQ(countedFrames(joinedFile), 100);
    const ToolRun decode =
        runTool(QStringLiteral("ffmpeg"), {"-v", "error", "-i", joinedFile, "-f", "null", "-"});
    EXPECT_EQ(decode.exitCode, 0);
    EXPECT_EQ(decode.errors, QByteArray());
}
