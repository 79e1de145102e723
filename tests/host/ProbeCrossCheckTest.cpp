#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <cmath>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;
using nlohmann::json;

namespace {

struct Fixture {
    const char* name;
    const char* file;
};

// ffprobe's number fields are texts; absent ones are null.
json number(const json& object, const char* key) {
    if (!object.contains(key))
        return nullptr;
    const json& value = object.at(key);
    return value.is_string() ? json(std::stoll(value.get<std::string>())) : value;
}

json text(const json& object, const char* key) {
    return object.contains(key) ? object.at(key) : json(nullptr);
}

class ProbeCrossCheckTest : public testing::TestWithParam<Fixture> {
protected:
    static json ffprobe(const QString& path) {
        const ToolRun run =
            runTool(QStringLiteral("ffprobe"),
                    {"-v", "error", "-show_format", "-show_streams", "-of", "json", path});
        EXPECT_TRUE(run.started) << "ffprobe is part of the test tools (scripts/setup)";
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        return json::parse(run.output.toStdString(), nullptr, false);
    }
};

TEST_P(ProbeCrossCheckTest, ProbeMatchesFfprobeFieldByField) {
    const QString path = QString::fromStdString(mediaFixture(GetParam().file));
    const HostRun run = runHost({"probe", path});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(run.errors, "");
    ASSERT_EQ(run.outputLines().size(), 1);
    const json ours = json::parse(run.output.toStdString()).at("probe");
    const json theirs = ffprobe(path);
    ASSERT_TRUE(theirs.is_object());
    const json& format = theirs.at("format");

    EXPECT_EQ(ours.at("path"), path.toStdString());
    EXPECT_EQ(ours.at("format"), format.at("format_name"));
    // A picture has no duration for ffprobe; its duration reads as 0.
    const long long durationMs =
        format.contains("duration")
            ? std::llround(std::stod(format.at("duration").get<std::string>()) * 1000)
            : 0;
    EXPECT_EQ(ours.at("duration_ms"), durationMs);
    EXPECT_EQ(ours.at("bit_rate"), number(format, "bit_rate"));
    EXPECT_EQ(ours.at("size"), number(format, "size"));

    const json& streams = theirs.at("streams");
    ASSERT_EQ(ours.at("streams").size(), streams.size());
    for (std::size_t i = 0; i < streams.size(); ++i) {
        SCOPED_TRACE("stream " + std::to_string(i));
        const json& our = ours.at("streams").at(i);
        const json& their = streams.at(i);
        EXPECT_EQ(our.at("index"), their.at("index"));
        EXPECT_EQ(our.at("type"), their.at("codec_type"));
        EXPECT_EQ(our.at("codec"), their.at("codec_name"));
        if (their.at("codec_type") == "video") {
            EXPECT_EQ(our.size(), 9u) << our.dump();
            EXPECT_EQ(our.at("width"), number(their, "width"));
            EXPECT_EQ(our.at("height"), number(their, "height"));
            EXPECT_EQ(our.at("frame_rate"), text(their, "avg_frame_rate"));
            EXPECT_EQ(our.at("pixel_format"), text(their, "pix_fmt"));
            // Pixels the file doesn't shape are square.
            const std::string shape = their.value("sample_aspect_ratio", "1:1");
            EXPECT_EQ(our.at("sample_aspect_ratio"),
                      shape == "N/A" || shape == "0:1" ? "1:1" : shape);
            int rotation = 0;
            for (const json& side : their.value("side_data_list", json::array()))
                rotation = side.value("rotation", rotation);
            EXPECT_EQ(our.at("rotation"), rotation);
        } else if (their.at("codec_type") == "audio") {
            EXPECT_EQ(our.size(), 5u) << our.dump();
            EXPECT_EQ(our.at("sample_rate"), number(their, "sample_rate"));
            EXPECT_EQ(our.at("channels"), number(their, "channels"));
        } else {
            EXPECT_EQ(our.size(), 3u) << our.dump();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    EveryMediaFixture, ProbeCrossCheckTest,
    testing::Values(Fixture{"Mp4H264Aac", "h264_aac.mp4"}, Fixture{"MkvVp9Opus", "vp9_opus.mkv"},
                    Fixture{"Mov", "clip.mov"}, Fixture{"WebM", "clip.webm"},
                    Fixture{"Wav", "tone.wav"}, Fixture{"PngStill", "still.png"},
                    Fixture{"OddWidth1921x1080", "wide_1921x1080.mp4"},
                    Fixture{"Portrait", "portrait.mp4"}, Fixture{"NoAudio", "noaudio.mp4"},
                    Fixture{"LosslessFfv1", "lossless.mkv"},
                    Fixture{"SubtitleAndAttachment", "subtitles.mkv"},
                    Fixture{"Rotated", "rotate90.mp4"}, Fixture{"Anamorphic", "sar_64_45.mp4"},
                    Fixture{"MpegTs", "open_gop.ts"}, Fixture{"LateStart", "start_10s.mp4"},
                    Fixture{"CoverArt", "cover_art.mp3"}),
    [](const testing::TestParamInfo<Fixture>& info) { return info.param.name; });

} // namespace
