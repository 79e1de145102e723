#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>

using EditorService::Testing::HostRun;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;

namespace {

// One preset and one of its codecs, and what ffprobe must find in the export: the codec's
// name, the tag players look for (hvc1, not hev1, for HEVC) and the preset's frame size (mp4
// keeps the input's 320x240).
struct PresetCodecRow {
    const char* name;
    const char* preset;
    const char* codec;
    const char* probed;
};

const PresetCodecRow presetCodecRows[] = {
    {"Mp4H264", "mp4", "CODEC_ID_H264", "h264,avc1,320,240"},
    {"Mp4Hevc", "mp4", "CODEC_ID_HEVC", "hevc,hvc1,320,240"},
    {"P2160H264", "2160p", "CODEC_ID_H264", "h264,avc1,3840,2160"},
    {"P2160Hevc", "2160p", "CODEC_ID_HEVC", "hevc,hvc1,3840,2160"},
    {"P1440H264", "1440p", "CODEC_ID_H264", "h264,avc1,2560,1440"},
    {"P1440Hevc", "1440p", "CODEC_ID_HEVC", "hevc,hvc1,2560,1440"},
    {"P1080H264", "1080p", "CODEC_ID_H264", "h264,avc1,1920,1080"},
    {"P1080Hevc", "1080p", "CODEC_ID_HEVC", "hevc,hvc1,1920,1080"},
    {"P720H264", "720p", "CODEC_ID_H264", "h264,avc1,1280,720"},
    {"P720Hevc", "720p", "CODEC_ID_HEVC", "hevc,hvc1,1280,720"},
    {"P480H264", "480p", "CODEC_ID_H264", "h264,avc1,854,480"},
    {"P480Hevc", "480p", "CODEC_ID_HEVC", "hevc,hvc1,854,480"},
    {"P360H264", "360p", "CODEC_ID_H264", "h264,avc1,640,360"},
    {"P360Hevc", "360p", "CODEC_ID_HEVC", "hevc,hvc1,640,360"},
};

class PresetExportTest : public testing::TestWithParam<PresetCodecRow> {
protected:
    QTemporaryDir directory;
};

} // namespace

TEST(PresetCodecsTest, TheRowsBelowHoldEveryPresetWithEveryCodecItLists) {
    const HostRun run = runHost({"presets"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    std::set<std::pair<std::string, std::string>> listed;
    for (const QByteArray& line : run.outputLines()) {
        const auto preset = nlohmann::json::parse(line.toStdString());
        for (const auto& codec : preset.at("videoCodecs"))
            listed.emplace(preset.at("id").get<std::string>(), codec.get<std::string>());
    }
    std::set<std::pair<std::string, std::string>> tested;
    for (const PresetCodecRow& row : presetCodecRows)
        tested.emplace(row.preset, row.codec);
    EXPECT_EQ(listed, tested);
}

TEST_P(PresetExportTest, ExportsTheCodecAtThePresetsFrameSize) {
    const PresetCodecRow& row = GetParam();
    const QString output = directory.filePath(QStringLiteral("out.mp4"));
    // Five frames prove the encoder takes the size. libx265 leaves the decoding time of an
    // encode of two frames or fewer unset, which the MP4 muxer may then refuse.
    const HostRun run =
        runHost({"export", QString::fromStdString(mediaFixture("h264_aac.mp4")),
                 "--output=" + output, QStringLiteral("--preset=%1").arg(row.preset),
                 QStringLiteral("--preset-video-codec=%1").arg(row.codec), "--range=0:200"});
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const ToolRun probe =
        runTool(QStringLiteral("ffprobe"),
                {"-v", "error", "-select_streams", "v", "-show_entries",
                 "stream=codec_name,codec_tag_string,width,height", "-of", "csv=p=0", output});
    EXPECT_EQ(probe.output.trimmed().toStdString(), row.probed) << probe.errors.toStdString();
}

INSTANTIATE_TEST_SUITE_P(EveryPresetAndCodec, PresetExportTest, testing::ValuesIn(presetCodecRows),
                         [](const testing::TestParamInfo<PresetCodecRow>& info) {
                             return std::string(info.param.name);
                         });
