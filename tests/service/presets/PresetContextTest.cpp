#include "service/presets/PresetContext.h"

#include "service/requests/ResizeFillMode.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

using EditorService::PresetContext;
using Velmor::Proc::SettingsResizer;

namespace {

struct OptionRow {
    const char* name;
    PresetContext::Option option;
    QString optionName;
    QString description;
    QString valueName;
    QString defaultValue;
};

void PrintTo(const OptionRow& row, std::ostream* out) {
    *out << row.name;
}

std::vector<OptionRow> optionRows() {
    return {
        {"PresetName", PresetContext::PresetName, QStringLiteral("preset"),
         QStringLiteral("Preset name. Available:\n2160p\n1440p\n1080p\n720p\n480p\n360p"),
         QStringLiteral("preset"), QStringLiteral("mp4")},
        {"VideoCodec", PresetContext::VideoCodec, QStringLiteral("preset-video-codec"),
         QStringLiteral("Select preset's video codec, i.e. CODEC_ID_H264"),
         QStringLiteral("preset-video-codec"), QString()},
        {"ResizeFillMode", PresetContext::ResizeFillMode, QStringLiteral("preset-resize-fill-mode"),
         QStringLiteral("Override preset's resize fill mode. Available:\n"
                        "Fit\nFill\nStretch\nFitWidth\nFitHeight\nCenter"),
         QStringLiteral("preset-resize-mode"), QString()},
        {"FrameSize", PresetContext::FrameSize, QStringLiteral("preset-frame-size"),
         QStringLiteral("Override preset's frame size.\nWith the original, the size from the "
                        "project is used.\nOriginal size, width and height must be even."),
         QStringLiteral("original|<width>:<height>"), QString()},
        {"VideoBitrate", PresetContext::VideoBitrate, QStringLiteral("preset-video-bitrate"),
         QStringLiteral("Override preset's video bitrate, i.e. 1200000 bits per sec."),
         QStringLiteral("Bitrate in bps"), QString()},
        {"AudioBitrate", PresetContext::AudioBitrate, QStringLiteral("preset-audio-bitrate"),
         QStringLiteral("Override preset's audio bitrate, i.e. 320000 bits per sec."),
         QStringLiteral("Bitrate in bps"), QString()},
    };
}

void expectSameOption(const QCommandLineOption& actual, const QCommandLineOption& expected) {
    EXPECT_EQ(actual.names(), expected.names());
    EXPECT_EQ(actual.description(), expected.description());
    EXPECT_EQ(actual.valueName(), expected.valueName());
    EXPECT_EQ(actual.defaultValues(), expected.defaultValues());
    EXPECT_EQ(actual.flags(), expected.flags());
}

PresetContext fullContext() {
    PresetContext context;
    context.preset = QStringLiteral("1080p");
    context.videoCodec = QStringLiteral("CODEC_ID_HEVC");
    context.frameSize = PresetFrameSize(1280, 720);
    context.resizeFillMode = SettingsResizer::Fill;
    context.videoBitrate = 1200000;
    context.audioBitrate = 320000;
    return context;
}

void expectSameFields(const PresetContext& actual, const PresetContext& expected) {
    EXPECT_EQ(actual.preset, expected.preset);
    EXPECT_EQ(actual.videoCodec, expected.videoCodec);
    EXPECT_EQ(actual.frameSize, expected.frameSize);
    EXPECT_EQ(actual.resizeFillMode, expected.resizeFillMode);
    EXPECT_EQ(actual.videoBitrate, expected.videoBitrate);
    EXPECT_EQ(actual.audioBitrate, expected.audioBitrate);
}

void expectNoOverride(const PresetContext& context) {
    EXPECT_FALSE(context.videoCodec.has_value());
    EXPECT_FALSE(context.frameSize.has_value());
    EXPECT_FALSE(context.resizeFillMode.has_value());
    EXPECT_FALSE(context.videoBitrate.has_value());
    EXPECT_FALSE(context.audioBitrate.has_value());
}

TEST(PresetContextTest, DefaultContextNamesTheDefaultPresetAndOverridesNothing) {
    const PresetContext context;
    EXPECT_EQ(PresetContext::defaultPreset(), QStringLiteral("mp4"));
    EXPECT_EQ(context.preset, PresetContext::defaultPreset());
    expectNoOverride(context);
}

class PresetContextOptionTest : public testing::TestWithParam<OptionRow> {};

TEST_P(PresetContextOptionTest, OptionIsTheRowOfItsNumber) {
    const OptionRow& row = GetParam();
    const QCommandLineOption option = PresetContext::option(row.option);
    EXPECT_EQ(option.names(), QStringList{row.optionName});
    EXPECT_EQ(option.description(), row.description);
    EXPECT_EQ(option.valueName(), row.valueName);
    EXPECT_EQ(option.defaultValues(),
              row.defaultValue.isEmpty() ? QStringList() : QStringList{row.defaultValue});
    EXPECT_EQ(option.flags(), QCommandLineOption::Flags());
}

INSTANTIATE_TEST_SUITE_P(Rows, PresetContextOptionTest, testing::ValuesIn(optionRows()),
                         [](const testing::TestParamInfo<OptionRow>& row) {
                             return std::string(row.param.name);
                         });

TEST(PresetContextTest, OptionsAreTheSixRowsInOrder) {
    const QList<QCommandLineOption> options = PresetContext::options();
    ASSERT_EQ(options.size(), 6);
    for (int number = 0; number < 6; ++number) {
        expectSameOption(options.at(number),
                         PresetContext::option(static_cast<PresetContext::Option>(number)));
    }
}

TEST(PresetContextTest, OptionsAskedTwiceAreEqual) {
    const QList<QCommandLineOption> first = PresetContext::options();
    const QList<QCommandLineOption> second = PresetContext::options();
    ASSERT_EQ(first.size(), second.size());
    for (int index = 0; index < first.size(); ++index)
        expectSameOption(second.at(index), first.at(index));
}

TEST(PresetContextTest, ResizeOptionKeepsItsOwnValueName) {
    const QCommandLineOption option = PresetContext::option(PresetContext::ResizeFillMode);
    EXPECT_EQ(option.names(), QStringList{QStringLiteral("preset-resize-fill-mode")});
    EXPECT_FALSE(option.names().contains(QStringLiteral("preset-resize-mode")));
    EXPECT_EQ(option.valueName(), QStringLiteral("preset-resize-mode"));
}

TEST(PresetContextTest, ResizeDescriptionListsEveryModeOnALineOfItsOwn) {
    const QStringList lines =
        PresetContext::option(PresetContext::ResizeFillMode).description().split('\n');
    EXPECT_EQ(lines.mid(1), resizeFillModeList());
}

TEST(PresetContextTest, ChangingAReturnedOptionLeavesTheTable) {
    QCommandLineOption option = PresetContext::option(PresetContext::VideoBitrate);
    option.setDescription(QStringLiteral("changed"));
    option.setDefaultValue(QStringLiteral("1"));
    QList<QCommandLineOption> options = PresetContext::options();
    options[0].setDescription(QStringLiteral("changed"));
    EXPECT_EQ(PresetContext::option(PresetContext::VideoBitrate).description(),
              QStringLiteral("Override preset's video bitrate, i.e. 1200000 bits per sec."));
    EXPECT_TRUE(PresetContext::option(PresetContext::VideoBitrate).defaultValues().isEmpty());
    EXPECT_EQ(PresetContext::options().at(0).description(), optionRows().front().description);
}

TEST(PresetContextTest, CopyOfAFullContextEqualsItsSource) {
    const PresetContext source = fullContext();
    const PresetContext copy(source);
    expectSameFields(copy, source);
    PresetContext original = fullContext();
    const PresetContext moved(std::move(original));
    expectSameFields(moved, source);
}

TEST(PresetContextTest, AssignmentFromAContextWithoutOverridesEmptiesThem) {
    PresetContext target = fullContext();
    target = PresetContext();
    EXPECT_EQ(target.preset, QStringLiteral("mp4"));
    expectNoOverride(target);

    PresetContext copied = fullContext();
    const PresetContext empty;
    copied = empty;
    expectNoOverride(copied);

    copied = fullContext();
    expectSameFields(copied, fullContext());
}

TEST(PresetContextTest, PresentOriginalSizeIsAnOverride) {
    PresetContext context;
    context.frameSize = PresetFrameSize();
    ASSERT_TRUE(context.frameSize.has_value());
    EXPECT_TRUE(context.frameSize->isOriginal());
}

TEST(PresetContextTest, ConcurrentFirstUsesShareOneTable) {
    constexpr int threadCount = 8;
    std::vector<QList<QCommandLineOption>> seen(threadCount);
    std::vector<std::thread> threads;
    for (int index = 0; index < threadCount; ++index) {
        threads.emplace_back([&seen, index] {
            seen[index] =
                index % 2
                    ? PresetContext::options()
                    : QList<QCommandLineOption>{PresetContext::option(PresetContext::PresetName)};
        });
    }
    for (auto& thread : threads)
        thread.join();
    for (int index = 0; index < threadCount; ++index) {
        ASSERT_EQ(seen[index].size(), index % 2 ? 6 : 1);
        expectSameOption(seen[index].front(), PresetContext::option(PresetContext::PresetName));
        if (index % 2)
            expectSameOption(seen[index].at(2),
                             PresetContext::option(PresetContext::ResizeFillMode));
    }
}

} // namespace
