#include "platform/preset/Preset.h"

#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>
#include <stdexcept>

using Velmor::Proc::SettingsResizer;
using Velmor::Testing::CallLog;

namespace {

nlohmann::json presetJson() {
    return nlohmann::json{{"id", "1080p"},
                          {"container", "mp4"},
                          {"videoCodecs", {"CODEC_ID_H264", "CODEC_ID_HEVC"}},
                          {"audioCodec", "CODEC_ID_AAC"},
                          {"resizeFillMode", "Fill"},
                          {"fixedResolution", false},
                          {"width", 1920},
                          {"height", 1080},
                          {"videoBitrateMode", "Quality"},
                          {"videoBitrateBps", 8000000},
                          {"audioBitrateBps", 256000}};
}

class PresetTest : public testing::Test {
protected:
    void SetUp() override { CallLog::clear(); }
};

TEST_F(PresetTest, ReadsEverySettingFromJson) {
    const Preset preset = Preset::fromJson(presetJson());
    EXPECT_EQ(preset.id(), "1080p");
    EXPECT_EQ(preset.container(), "mp4");
    EXPECT_EQ(preset.videoCodecs(), (std::vector<std::string>{"CODEC_ID_H264", "CODEC_ID_HEVC"}));
    EXPECT_EQ(preset.videoCodec(), "CODEC_ID_H264");
    EXPECT_EQ(preset.audioCodec(), "CODEC_ID_AAC");
    EXPECT_EQ(preset.resizeFillMode(), SettingsResizer::Fill);
    EXPECT_FALSE(preset.hasFixedResolution());
    EXPECT_EQ(preset.width(), 1920);
    EXPECT_EQ(preset.height(), 1080);
    EXPECT_EQ(preset.videoBitrateMode(), Export::BitrateMode::Quality);
    EXPECT_EQ(preset.videoBitrateBps(), 8000000);
    EXPECT_EQ(preset.audioBitrateBps(), 256000);
}

TEST_F(PresetTest, JsonFormHoldsTheSelectedCodec) {
    auto expected = presetJson();
    expected["videoCodec"] = "CODEC_ID_H264";
    EXPECT_EQ(Preset::fromJson(presetJson()).toJson(), expected);
}

TEST_F(PresetTest, UnknownNamesInJsonAreRefused) {
    auto badMode = presetJson();
    badMode["resizeFillMode"] = "fill";
    EXPECT_THROW(Preset::fromJson(badMode), std::invalid_argument);
    auto badBitrateMode = presetJson();
    badBitrateMode["videoBitrateMode"] = "Cbr";
    EXPECT_THROW(Preset::fromJson(badBitrateMode), std::invalid_argument);
    auto noCodec = presetJson();
    noCodec["videoCodecs"] = nlohmann::json::array();
    EXPECT_THROW(Preset::fromJson(noCodec), std::invalid_argument);
}

TEST_F(PresetTest, SelectsOnlyItsOwnCodecs) {
    Preset preset = Preset::fromJson(presetJson());
    EXPECT_TRUE(preset.selectVideoCodec("CODEC_ID_HEVC"));
    EXPECT_EQ(preset.videoCodec(), "CODEC_ID_HEVC");
    EXPECT_FALSE(preset.selectVideoCodec("CODEC_ID_VP9"));
    EXPECT_EQ(preset.videoCodec(), "CODEC_ID_HEVC");
}

TEST_F(PresetTest, FixedResolutionKeepsItsSize) {
    auto fixed = presetJson();
    fixed["fixedResolution"] = true;
    Preset preset = Preset::fromJson(fixed);
    EXPECT_TRUE(preset.hasFixedResolution());
    EXPECT_FALSE(preset.setWidth(1280));
    EXPECT_FALSE(preset.setHeight(720));
    EXPECT_EQ(preset.width(), 1920);
    EXPECT_EQ(preset.height(), 1080);
}

TEST_F(PresetTest, FreeResolutionTakesSizesThatFit32Bits) {
    Preset preset = Preset::fromJson(presetJson());
    EXPECT_TRUE(preset.setWidth(0));
    EXPECT_TRUE(preset.setHeight(720));
    EXPECT_FALSE(preset.setWidth(-2));
    EXPECT_FALSE(preset.setHeight(1LL << 31));
    EXPECT_EQ(preset.width(), 0);
    EXPECT_EQ(preset.height(), 720);
}

TEST_F(PresetTest, BitratesBelowOneAreRefused) {
    Preset preset = Preset::fromJson(presetJson());
    EXPECT_FALSE(preset.setVideoBitrateBps(0));
    EXPECT_FALSE(preset.setAudioBitrateBps(-5));
    EXPECT_TRUE(preset.setVideoBitrateBps(1200000));
    EXPECT_TRUE(preset.setAudioBitrateBps(320000));
    EXPECT_EQ(preset.videoBitrateBps(), 1200000);
    EXPECT_EQ(preset.audioBitrateBps(), 320000);
}

TEST_F(PresetTest, BitrateModeAndResizeModeAreSet) {
    Preset preset = Preset::fromJson(presetJson());
    EXPECT_TRUE(preset.setVideoBitrateMode(Export::BitrateMode::Bps));
    EXPECT_EQ(preset.videoBitrateMode(), Export::BitrateMode::Bps);
    EXPECT_EQ(static_cast<int>(Export::BitrateMode::Bps), 2);
    EXPECT_TRUE(preset.setResizeFillMode(SettingsResizer::Center));
    EXPECT_EQ(preset.resizeFillMode(), SettingsResizer::Center);
    EXPECT_FALSE(preset.setResizeFillMode(static_cast<SettingsResizer::CustomModes>(9)));
    EXPECT_EQ(preset.resizeFillMode(), SettingsResizer::Center);
}

TEST_F(PresetTest, CopyIsIndependentOfItsSource) {
    const Preset source = Preset::fromJson(presetJson());
    Preset copy = source;
    EXPECT_EQ(copy, source);
    copy.setWidth(1280);
    EXPECT_NE(copy, source);
    EXPECT_EQ(source.width(), 1920);
    Preset assigned;
    assigned = copy;
    EXPECT_EQ(assigned, copy);
    Preset moved = std::move(assigned);
    EXPECT_EQ(moved, copy);
}

TEST_F(PresetTest, DrivenOperationsAreRecordedInOrder) {
    Preset preset = Preset::fromJson(presetJson());
    preset.selectVideoCodec("CODEC_ID_HEVC");
    preset.setResizeFillMode(SettingsResizer::Stretch);
    preset.hasFixedResolution();
    preset.setWidth(1280);
    preset.setHeight(720);
    preset.setVideoBitrateMode(Export::BitrateMode::Bps);
    preset.setVideoBitrateBps(1200000);
    preset.setAudioBitrateBps(320000);
    preset.width();
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{
                  "Preset::selectVideoCodec(CODEC_ID_HEVC)", "Preset::setResizeFillMode(Stretch)",
                  "Preset::hasFixedResolution()", "Preset::setWidth(1280)",
                  "Preset::setHeight(720)", "Preset::setVideoBitrateMode(Bps)",
                  "Preset::setVideoBitrateBps(1200000)", "Preset::setAudioBitrateBps(320000)"}));
}

} // namespace
