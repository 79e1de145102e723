#include "service/presets/PresetContext.h"

#include "platform/export/PresetProvider.h"
#include "platform/foundation/CallLog.h"
#include "platform/model/Video.h"
#include "service/api/Error.h"
#include "tests/support/FailedWith.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Error;
using EditorService::PresetContext;
using EditorService::Testing::FailedWith;
using EditorService::Testing::failureOf;
using Velmor::Proc::SettingsResizer;
using Velmor::Testing::CallLog;

namespace {

const std::string updatePreset = "PresetProvider::updatePreset";
const std::string updateResolution = "PresetProvider::updateResolutionPresetIfNeeded";
const std::string released = "PresetProvider::~PresetProvider()";

std::string unknownPresetMessage(const std::string& preset) {
    return "Unknown preset: " + preset
           + "\nAvailable presets:\nmp4\n2160p\n1440p\n1080p\n720p\n480p\n360p";
}

// What a freshly loaded provider holds for one preset, taken before the call under test.
Preset storedPreset(const std::string& id) {
    Export::PresetProvider provider;
    provider.load();
    provider.selectTag("format_clive");
    provider.selectPreset(id);
    return provider.preset();
}

std::exception_ptr failure(const PresetContext& context, const Media::Video* video) {
    return failureOf([&] { context.makeProvider(video); });
}

int count(const std::vector<std::string>& entries, const std::string& prefix) {
    return static_cast<int>(std::count_if(entries.begin(), entries.end(), [&](const auto& entry) {
        return entry.rfind(prefix, 0) == 0;
    }));
}

std::ptrdiff_t position(const std::vector<std::string>& entries, const std::string& entry) {
    const auto found = std::find(entries.begin(), entries.end(), entry);
    EXPECT_NE(found, entries.end()) << entry;
    return found - entries.begin();
}

// The calls on presets among the entries.
std::vector<std::string> presetCalls(const std::vector<std::string>& entries) {
    std::vector<std::string> calls;
    std::copy_if(entries.begin(), entries.end(), std::back_inserter(calls),
                 [](const auto& entry) { return entry.rfind("Preset::", 0) == 0; });
    return calls;
}

// The entries up to the working copy's return to the provider; the provider's own fitting to the
// video comes after it.
std::vector<std::string> beforeUpdate(const std::vector<std::string>& entries) {
    const auto update = std::find_if(entries.begin(), entries.end(), [](const auto& entry) {
        return entry.rfind(updatePreset, 0) == 0;
    });
    return std::vector<std::string>(entries.begin(), update);
}

class PresetContextMakeProviderTest : public testing::Test {
protected:
    void SetUp() override { CallLog::clear(); }
};

TEST_F(PresetContextMakeProviderTest, DefaultContextWithoutVideoSelectsTheUnchangedDefault) {
    const Preset expected = storedPreset("mp4");
    CallLog::clear();
    const auto provider = PresetContext().makeProvider(nullptr);
    ASSERT_TRUE(provider);
    EXPECT_EQ(provider.use_count(), 1);
    EXPECT_EQ(provider->preset(), expected);
    const auto entries = CallLog::entries();
    EXPECT_EQ(count(entries, updatePreset), 1);
    EXPECT_EQ(count(entries, updateResolution), 0);
    EXPECT_TRUE(presetCalls(entries).empty());
}

TEST_F(PresetContextMakeProviderTest, ProviderIsDrivenInTheFixedOrder) {
    const Media::Video video{1920, 1080};
    const auto provider = PresetContext().makeProvider(&video);
    const auto entries = CallLog::entries();
    ASSERT_GE(entries.size(), 8u);
    EXPECT_EQ(
        std::vector<std::string>(entries.begin(), entries.begin() + 8),
        (std::vector<std::string>{"PresetProvider::PresetProvider()", "PresetProvider::load()",
                                  "PresetProvider::selectTag(format_clive)",
                                  "PresetProvider::selectPreset(mp4)", "PresetProvider::preset()",
                                  "PresetProvider::preset()", "PresetProvider::updatePreset(mp4)",
                                  "PresetProvider::updateResolutionPresetIfNeeded(1920x1080)"}));
    EXPECT_EQ(count(entries, released), 0);
}

TEST_F(PresetContextMakeProviderTest, VideoWithoutOverridesIsFittedAllTheSame) {
    const Media::Video video{1280, 720};
    const auto provider = PresetContext().makeProvider(&video);
    const auto entries = CallLog::entries();
    EXPECT_EQ(count(entries, updateResolution), 1);
    EXPECT_LT(position(entries, "PresetProvider::updatePreset(mp4)"),
              position(entries, "PresetProvider::updateResolutionPresetIfNeeded(1280x720)"));
    EXPECT_EQ(provider->preset().width(), 1280);
    EXPECT_EQ(provider->preset().height(), 720);
}

TEST_F(PresetContextMakeProviderTest, EveryCallGivesANewProvider) {
    const PresetContext context;
    const auto first = context.makeProvider(nullptr);
    const auto second = context.makeProvider(nullptr);
    EXPECT_NE(first, second);
}

TEST_F(PresetContextMakeProviderTest, NamedPresetIsSelected) {
    PresetContext context;
    context.preset = QStringLiteral("720p");
    EXPECT_EQ(context.makeProvider(nullptr)->preset().id(), "720p");
}

TEST_F(PresetContextMakeProviderTest, UnknownPresetListsTheAvailableOnesAndUpdatesNothing) {
    PresetContext context;
    context.preset = QStringLiteral("4320p");
    const Media::Video video{1920, 1080};
    EXPECT_THAT(failure(context, &video), FailedWith<Error>(unknownPresetMessage("4320p")));
    const auto entries = CallLog::entries();
    EXPECT_EQ(count(entries, updatePreset), 0);
    EXPECT_EQ(count(entries, updateResolution), 0);
    EXPECT_EQ(entries.back(), released);
}

TEST_F(PresetContextMakeProviderTest, PresetNameIsComparedWithCase) {
    PresetContext context;
    context.preset = QStringLiteral("MP4");
    EXPECT_THAT(failure(context, nullptr), FailedWith<Error>(unknownPresetMessage("MP4")));
}

TEST_F(PresetContextMakeProviderTest, PlaceholdersInAnUnknownPresetNameAreQuotedAsTheyCame) {
    for (const char* name : {"%2", "a%1b", "%1", "%2%1", "100%"}) {
        PresetContext context;
        context.preset = QString::fromUtf8(name);
        EXPECT_THAT(failure(context, nullptr), FailedWith<Error>(unknownPresetMessage(name)));
    }
}

TEST_F(PresetContextMakeProviderTest, PlaceholdersInAnUnexpectedCodecAreQuotedAsTheyCame) {
    PresetContext context;
    context.videoCodec = QStringLiteral("%1%2");
    EXPECT_THAT(failure(context, nullptr),
                FailedWith<Error>("Unexpected video codec for preset: %1%2"));
}

TEST_F(PresetContextMakeProviderTest, EmptyPresetNameIsUnknown) {
    PresetContext context;
    context.preset = QString();
    EXPECT_THAT(failure(context, nullptr), FailedWith<Error>(unknownPresetMessage("")));
}

TEST_F(PresetContextMakeProviderTest, UnknownCodecWithUnknownPresetReportsThePreset) {
    PresetContext context;
    context.preset = QStringLiteral("8k");
    context.videoCodec = QStringLiteral("CODEC_ID_NONE");
    EXPECT_THAT(failure(context, nullptr), FailedWith<Error>(unknownPresetMessage("8k")));
}

TEST_F(PresetContextMakeProviderTest, OddFrameSizeWithUnknownCodecReportsTheCodec) {
    PresetContext context;
    context.videoCodec = QStringLiteral("CODEC_ID_NONE");
    context.frameSize = PresetFrameSize(1279, 719);
    const Media::Video video{1920, 1080};
    EXPECT_THAT(failure(context, &video),
                FailedWith<Error>("Unexpected video codec for preset: CODEC_ID_NONE"));
}

TEST_F(PresetContextMakeProviderTest, CodecOfThePresetIsSelected) {
    PresetContext context;
    context.preset = QStringLiteral("1080p");
    context.videoCodec = QStringLiteral("CODEC_ID_HEVC");
    EXPECT_EQ(context.makeProvider(nullptr)->preset().videoCodec(), "CODEC_ID_HEVC");
}

TEST_F(PresetContextMakeProviderTest, CodecFailureGivesTheWorkingCopyBackBeforeRelease) {
    PresetContext context;
    context.preset = QStringLiteral("720p");
    context.videoCodec = QStringLiteral("CODEC_ID_VP9");
    const Media::Video video{1920, 1080};
    EXPECT_THAT(failure(context, &video),
                FailedWith<Error>("Unexpected video codec for preset: CODEC_ID_VP9"));
    const auto entries = CallLog::entries();
    EXPECT_EQ(count(entries, updatePreset), 1);
    EXPECT_EQ(count(entries, updateResolution), 1);
    EXPECT_LT(position(entries, "PresetProvider::updatePreset(720p)"),
              position(entries, "PresetProvider::updateResolutionPresetIfNeeded(1920x1080)"));
    EXPECT_LT(position(entries, "PresetProvider::updateResolutionPresetIfNeeded(1920x1080)"),
              position(entries, released));
    EXPECT_EQ(count(entries, "Preset::setResizeFillMode"), 0);
}

TEST_F(PresetContextMakeProviderTest, FrameSizeFailureHasAppliedTheEarlierOverridesOnce) {
    PresetContext context;
    context.videoCodec = QStringLiteral("CODEC_ID_HEVC");
    context.resizeFillMode = SettingsResizer::Stretch;
    context.frameSize = PresetFrameSize(1281, 720);
    context.videoBitrate = 1200000;
    const Media::Video video{1920, 1080};
    EXPECT_THAT(failure(context, &video), FailedWith<Error>("Frame size must be even."));
    const auto entries = CallLog::entries();
    EXPECT_EQ(count(entries, updatePreset), 1);
    EXPECT_EQ(presetCalls(beforeUpdate(entries)),
              (std::vector<std::string>{"Preset::selectVideoCodec(CODEC_ID_HEVC)",
                                        "Preset::setResizeFillMode(Stretch)",
                                        "Preset::hasFixedResolution()"}));
    EXPECT_LT(position(entries, "Preset::hasFixedResolution()"),
              position(entries, "PresetProvider::updatePreset(mp4)"));
    EXPECT_EQ(entries.back(), released);
}

TEST_F(PresetContextMakeProviderTest, OverridesAreAppliedInTheFixedOrderBeforeTheUpdate) {
    PresetContext context;
    context.videoCodec = QStringLiteral("CODEC_ID_HEVC");
    context.resizeFillMode = SettingsResizer::Center;
    context.frameSize = PresetFrameSize(1280, 720);
    context.videoBitrate = 1200000;
    context.audioBitrate = 320000;
    const Media::Video video{1920, 1080};
    const auto provider = context.makeProvider(&video);
    const auto entries = CallLog::entries();
    EXPECT_EQ(presetCalls(beforeUpdate(entries)),
              (std::vector<std::string>{
                  "Preset::selectVideoCodec(CODEC_ID_HEVC)", "Preset::setResizeFillMode(Center)",
                  "Preset::hasFixedResolution()", "Preset::setWidth(1280)",
                  "Preset::setHeight(720)", "Preset::setVideoBitrateMode(Bps)",
                  "Preset::setVideoBitrateBps(1200000)", "Preset::setAudioBitrateBps(320000)"}));
    const Preset preset = provider->preset();
    EXPECT_EQ(preset.videoCodec(), "CODEC_ID_HEVC");
    EXPECT_EQ(preset.resizeFillMode(), SettingsResizer::Center);
    EXPECT_EQ(preset.width(), 1280);
    EXPECT_EQ(preset.height(), 720);
    EXPECT_EQ(preset.videoBitrateMode(), Export::BitrateMode::Bps);
    EXPECT_EQ(preset.videoBitrateBps(), 1200000);
    EXPECT_EQ(preset.audioBitrateBps(), 320000);
}

TEST_F(PresetContextMakeProviderTest, VideoBitrateSetsTheModeOfNumberTwoBeforeTheRate) {
    PresetContext context;
    context.videoBitrate = 2500000;
    const auto provider = context.makeProvider(nullptr);
    EXPECT_EQ(presetCalls(CallLog::entries()),
              (std::vector<std::string>{"Preset::setVideoBitrateMode(Bps)",
                                        "Preset::setVideoBitrateBps(2500000)"}));
    EXPECT_EQ(static_cast<int>(provider->preset().videoBitrateMode()), 2);
}

TEST_F(PresetContextMakeProviderTest, AudioBitrateAloneLeavesTheVideoMode) {
    const Preset stored = storedPreset("mp4");
    CallLog::clear();
    PresetContext context;
    context.audioBitrate = 96000;
    const auto provider = context.makeProvider(nullptr);
    EXPECT_EQ(presetCalls(CallLog::entries()),
              std::vector<std::string>{"Preset::setAudioBitrateBps(96000)"});
    EXPECT_EQ(provider->preset().videoBitrateMode(), stored.videoBitrateMode());
    EXPECT_EQ(provider->preset().videoBitrateBps(), stored.videoBitrateBps());
    EXPECT_EQ(provider->preset().audioBitrateBps(), 96000);
}

TEST_F(PresetContextMakeProviderTest, BitratesGoToThePresetAsTheyAre) {
    PresetContext context;
    context.videoBitrate = 0;
    context.audioBitrate = -5;
    context.makeProvider(nullptr);
    EXPECT_EQ(presetCalls(CallLog::entries()),
              (std::vector<std::string>{"Preset::setVideoBitrateMode(Bps)",
                                        "Preset::setVideoBitrateBps(0)",
                                        "Preset::setAudioBitrateBps(-5)"}));
}

TEST_F(PresetContextMakeProviderTest, ResizeFillModeIsApplied) {
    PresetContext context;
    context.resizeFillMode = SettingsResizer::FitWidth;
    EXPECT_EQ(context.makeProvider(nullptr)->preset().resizeFillMode(), SettingsResizer::FitWidth);
}

TEST_F(PresetContextMakeProviderTest, OriginalSizeOfAnEvenProjectIsWritten) {
    PresetContext context;
    context.frameSize = PresetFrameSize();
    const Media::Video video{1080, 1920};
    const auto provider = context.makeProvider(&video);
    EXPECT_EQ(presetCalls(beforeUpdate(CallLog::entries())),
              (std::vector<std::string>{"Preset::hasFixedResolution()", "Preset::setWidth(1080)",
                                        "Preset::setHeight(1920)"}));
    EXPECT_EQ(provider->preset().width(), 1080);
    EXPECT_EQ(provider->preset().height(), 1920);
}

TEST_F(PresetContextMakeProviderTest, OriginalSizeOfAProjectOf1921By1080IsOdd) {
    PresetContext context;
    context.frameSize = PresetFrameSize();
    const Media::Video video{1921, 1080};
    EXPECT_THAT(failure(context, &video), FailedWith<Error>("Frame size must be even."));
    EXPECT_EQ(count(CallLog::entries(), updatePreset), 1);
    EXPECT_EQ(count(beforeUpdate(CallLog::entries()), "Preset::setWidth"), 0);
}

TEST_F(PresetContextMakeProviderTest, ExplicitSizeWinsOverAnOddProject) {
    PresetContext context;
    context.frameSize = PresetFrameSize(1280, 720);
    const Media::Video video{1921, 1081};
    const auto provider = context.makeProvider(&video);
    EXPECT_EQ(provider->preset().width(), 1280);
    EXPECT_EQ(provider->preset().height(), 720);
}

TEST_F(PresetContextMakeProviderTest, ZeroFrameSizeCountsAsEven) {
    PresetContext context;
    context.frameSize = PresetFrameSize(0, 0);
    const Media::Video video{1920, 1080};
    context.makeProvider(&video);
    const auto calls = presetCalls(beforeUpdate(CallLog::entries()));
    EXPECT_NE(std::find(calls.begin(), calls.end(), "Preset::setWidth(0)"), calls.end());
    EXPECT_NE(std::find(calls.begin(), calls.end(), "Preset::setHeight(0)"), calls.end());
}

TEST_F(PresetContextMakeProviderTest, ContextIsLeftAsItWas) {
    PresetContext context;
    context.frameSize = PresetFrameSize();
    context.videoBitrate = 1000;
    const Media::Video video{1920, 1080};
    context.makeProvider(&video);
    EXPECT_EQ(context.preset, QStringLiteral("mp4"));
    EXPECT_TRUE(context.frameSize->isOriginal());
    EXPECT_EQ(context.videoBitrate, 1000);
}

// What "original" comes to: the frame size override against the video and the preset.
struct OriginalRow {
    const char* name;
    std::optional<PresetFrameSize> frameSize;
    std::optional<Media::Video> video;
    const char* preset;
    std::string outcome; // the failure, or "WxH" of the resulting preset
};

void PrintTo(const OriginalRow& row, std::ostream* out) {
    *out << row.name;
}

class PresetContextOriginalSizeTest : public PresetContextMakeProviderTest,
                                      public testing::WithParamInterface<OriginalRow> {};

TEST_P(PresetContextOriginalSizeTest, FrameSizeComesToTheTabledEffect) {
    const OriginalRow& row = GetParam();
    PresetContext context;
    context.preset = QString::fromLatin1(row.preset);
    context.frameSize = row.frameSize;
    std::string outcome;
    try {
        const auto provider = context.makeProvider(row.video ? &*row.video : nullptr);
        const Preset preset = provider->preset();
        outcome = std::to_string(preset.width()) + "x" + std::to_string(preset.height());
    } catch (const Error& error) {
        outcome = error.what();
    }
    EXPECT_EQ(outcome, row.outcome);
}

const Media::Video oddVideo{1921, 1081};
const Media::Video evenVideo{1080, 1920};
const char* const oddFailure = "Frame size must be even.";

// The mp4 preset has no size of its own (0x0) until a video fits it, to even sides; 1080p and
// 720p are of fixed resolution.
INSTANTIATE_TEST_SUITE_P(
    Effects, PresetContextOriginalSizeTest,
    testing::Values(
        OriginalRow{"EmptyWithoutVideo", std::nullopt, std::nullopt, "mp4", "0x0"},
        OriginalRow{"EmptyWithOddVideo", std::nullopt, oddVideo, "mp4", "1920x1080"},
        OriginalRow{"EmptyWithFixedPreset", std::nullopt, oddVideo, "1080p", "1920x1080"},
        OriginalRow{"OddSizeWithoutVideo", PresetFrameSize(1281, 721), std::nullopt, "mp4", "0x0"},
        OriginalRow{"OriginalWithoutVideo", PresetFrameSize(), std::nullopt, "mp4", "0x0"},
        OriginalRow{"OddSizeWithFixedPreset", PresetFrameSize(1281, 721), evenVideo, "1080p",
                    "1920x1080"},
        OriginalRow{"OriginalWithFixedPresetAndOddVideo", PresetFrameSize(), oddVideo, "720p",
                    "1280x720"},
        OriginalRow{"OriginalWithEvenVideo", PresetFrameSize(), evenVideo, "mp4", "1080x1920"},
        OriginalRow{"OriginalWithOddVideo", PresetFrameSize(), oddVideo, "mp4", oddFailure},
        OriginalRow{"ExplicitEvenSize", PresetFrameSize(640, 360), oddVideo, "mp4", "640x360"},
        OriginalRow{"ExplicitOddWidth", PresetFrameSize(641, 360), evenVideo, "mp4", oddFailure},
        OriginalRow{"ExplicitOddHeight", PresetFrameSize(640, 361), evenVideo, "mp4", oddFailure},
        OriginalRow{"OneSideOriginal", PresetFrameSize(-1, 360), evenVideo, "mp4", oddFailure}),
    [](const testing::TestParamInfo<OriginalRow>& row) { return std::string(row.param.name); });

} // namespace
