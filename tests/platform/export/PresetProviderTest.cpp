#include "platform/export/PresetProvider.h"

#include "platform/foundation/CallLog.h"
#include "platform/model/Video.h"

#include <gtest/gtest.h>

using Export::PresetProvider;
using Velmor::Testing::CallLog;

namespace {

const std::vector<std::string> clivePresets = {"mp4",  "2160p", "1440p", "1080p",
                                               "720p", "480p",  "360p"};

class PresetProviderTest : public testing::Test {
protected:
    void SetUp() override { CallLog::clear(); }

    static std::unique_ptr<PresetProvider> loaded(const std::string& tag = "format_clive") {
        auto provider = std::make_unique<PresetProvider>();
        provider->load();
        provider->selectTag(tag);
        return provider;
    }
};

TEST_F(PresetProviderTest, NothingIsSelectedBeforeATag) {
    PresetProvider provider;
    provider.load();
    EXPECT_EQ(provider.preset().id(), "");
    EXPECT_TRUE(provider.availablePresets().empty());
}

TEST_F(PresetProviderTest, CliveTagHoldsTheWebAndResolutionPresets) {
    EXPECT_EQ(loaded()->availablePresets(), clivePresets);
}

TEST_F(PresetProviderTest, SelectingATagSelectsItsDefault) {
    EXPECT_EQ(loaded()->preset().id(), "mp4");
    EXPECT_EQ(loaded("format_webm")->preset().id(), "webm");
}

TEST_F(PresetProviderTest, UnknownTagOffersNothing) {
    auto provider = loaded("format_none");
    EXPECT_TRUE(provider->availablePresets().empty());
    EXPECT_EQ(provider->preset().id(), "");
}

TEST_F(PresetProviderTest, EveryPresetCanBeSelected) {
    auto provider = loaded();
    for (const auto& id : clivePresets) {
        provider->selectPreset(id);
        EXPECT_EQ(provider->preset().id(), id);
    }
}

TEST_F(PresetProviderTest, UnknownIdentifierLeavesTheSelectionAsItWas) {
    auto provider = loaded();
    provider->selectPreset("720p");
    provider->selectPreset("4320p");
    EXPECT_EQ(provider->preset().id(), "720p");
    provider->selectPreset("webm");
    EXPECT_EQ(provider->preset().id(), "720p");
}

TEST_F(PresetProviderTest, MpegPresetIsOfFreeResolutionWithTheProjectSize) {
    const Preset preset = loaded()->preset();
    EXPECT_FALSE(preset.hasFixedResolution());
    EXPECT_EQ(preset.width(), 0);
    EXPECT_EQ(preset.height(), 0);
    EXPECT_EQ(preset.videoCodec(), "CODEC_ID_H264");
    EXPECT_NE(preset.videoBitrateMode(), Export::BitrateMode::Bps);
}

struct ResolutionRow {
    const char* name;
    std::string id;
    int width;
    int height;
};

class PresetProviderResolutionTest : public PresetProviderTest,
                                     public testing::WithParamInterface<ResolutionRow> {};

TEST_P(PresetProviderResolutionTest, ResolutionPresetHasItsFixedSizeAndH264) {
    auto provider = loaded();
    provider->selectPreset(GetParam().id);
    Preset preset = provider->preset();
    EXPECT_TRUE(preset.hasFixedResolution());
    EXPECT_EQ(preset.width(), GetParam().width);
    EXPECT_EQ(preset.height(), GetParam().height);
    EXPECT_TRUE(preset.selectVideoCodec("CODEC_ID_H264"));
    EXPECT_GT(preset.videoBitrateBps(), 0);
    EXPECT_GT(preset.audioBitrateBps(), 0);
}

INSTANTIATE_TEST_SUITE_P(Presets, PresetProviderResolutionTest,
                         testing::Values(ResolutionRow{"UltraHd", "2160p", 3840, 2160},
                                         ResolutionRow{"QuadHd", "1440p", 2560, 1440},
                                         ResolutionRow{"FullHd", "1080p", 1920, 1080},
                                         ResolutionRow{"Hd", "720p", 1280, 720},
                                         ResolutionRow{"Sd", "480p", 854, 480},
                                         ResolutionRow{"Low", "360p", 640, 360}),
                         [](const testing::TestParamInfo<ResolutionRow>& row) {
                             return std::string(row.param.name);
                         });

TEST_F(PresetProviderTest, PresetIsACopyUntilGivenBack) {
    auto provider = loaded();
    Preset copy = provider->preset();
    copy.setWidth(1280);
    EXPECT_EQ(provider->preset().width(), 0);
    EXPECT_TRUE(provider->updatePreset(copy));
    EXPECT_EQ(provider->preset().width(), 1280);
}

TEST_F(PresetProviderTest, PresetOfAnotherTagIsNotTakenBack) {
    auto provider = loaded();
    Preset foreign = loaded("format_webm")->preset();
    EXPECT_FALSE(provider->updatePreset(foreign));
    EXPECT_FALSE(provider->updatePreset(Preset("4320p")));
}

TEST_F(PresetProviderTest, LoadingAgainDropsUpdatesAndKeepsTheSelection) {
    auto provider = loaded();
    provider->selectPreset("720p");
    Preset copy = provider->preset();
    copy.setAudioBitrateBps(1);
    provider->updatePreset(copy);
    provider->load();
    EXPECT_EQ(provider->preset().id(), "720p");
    EXPECT_EQ(provider->preset().audioBitrateBps(), 192000);
}

TEST_F(PresetProviderTest, FreeResolutionWithoutSizeTakesTheVideoSizeMadeEven) {
    auto provider = loaded();
    const Media::Video video{1921, 1081};
    provider->updateResolutionPresetIfNeeded(&video);
    EXPECT_EQ(provider->preset().width(), 1920);
    EXPECT_EQ(provider->preset().height(), 1080);
}

TEST_F(PresetProviderTest, PresetWithASizeKeepsIt) {
    auto provider = loaded();
    Preset copy = provider->preset();
    copy.setWidth(1280);
    copy.setHeight(720);
    provider->updatePreset(copy);
    const Media::Video video{1920, 1080};
    provider->updateResolutionPresetIfNeeded(&video);
    EXPECT_EQ(provider->preset().width(), 1280);
    EXPECT_EQ(provider->preset().height(), 720);

    provider->selectPreset("480p");
    provider->updateResolutionPresetIfNeeded(&video);
    EXPECT_EQ(provider->preset().width(), 854);
}

TEST_F(PresetProviderTest, NullVideoChangesNothing) {
    auto provider = loaded();
    provider->updateResolutionPresetIfNeeded(nullptr);
    EXPECT_EQ(provider->preset().width(), 0);
}

TEST_F(PresetProviderTest, EveryCallIsRecordedInOrder) {
    {
        PresetProvider provider;
        provider.load();
        provider.selectTag("format_clive");
        provider.selectPreset("1080p");
        const Preset preset = provider.preset();
        provider.availablePresets();
        provider.updatePreset(preset);
        const Media::Video video{1280, 720};
        provider.updateResolutionPresetIfNeeded(&video);
        provider.updateResolutionPresetIfNeeded(nullptr);
    }
    EXPECT_EQ(CallLog::entries(),
              (std::vector<std::string>{
                  "PresetProvider::PresetProvider()", "PresetProvider::load()",
                  "PresetProvider::selectTag(format_clive)", "PresetProvider::selectPreset(1080p)",
                  "PresetProvider::preset()", "PresetProvider::availablePresets()",
                  "PresetProvider::updatePreset(1080p)",
                  "PresetProvider::updateResolutionPresetIfNeeded(1280x720)",
                  "PresetProvider::updateResolutionPresetIfNeeded(null)",
                  "PresetProvider::~PresetProvider()"}));
}

} // namespace
