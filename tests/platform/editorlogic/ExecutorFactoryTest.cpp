#include "platform/editorlogic/ExecutorFactory.h"

#include "platform/av/MediaError.h"
#include "platform/engine/PluginError.h"
#include "platform/foundation/CallLog.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::RunningEngine;
using Velmor::Testing::CallLog;

namespace {

QString fixture(const std::string& name) {
    return QString::fromStdString(mediaFixture(name));
}

} // namespace

TEST(ExecutorFactoryTest, OpensAFileAndParsesItsStreams) {
    const RunningEngine engine;
    const Core::ExecutorFactory factory;
    const auto parser = factory.createFileParser(fixture("h264_aac.mp4"), {});
    EXPECT_EQ(parser->info().streams.size(), 2u);
}

TEST(ExecutorFactoryTest, OpensTheDecodersOfVideoAndAudioStreams) {
    const RunningEngine engine;
    const Core::ExecutorFactory factory;
    const auto parser = factory.createFileParser(fixture("h264_aac.mp4"), {});
    EXPECT_EQ(factory.createVideoDecoder(*parser, 0)->streamIndex(), 0);
    EXPECT_EQ(factory.createAudioDecoder(*parser, 1)->streamIndex(), 1);
}

TEST(ExecutorFactoryTest, AFileThatCanNotBeOpenedFailsWithTheReason) {
    const RunningEngine engine;
    const Core::ExecutorFactory factory;
    EXPECT_THAT([&] { factory.createFileParser(QStringLiteral("/nonexistent/a.mp4"), {}); },
                FailedWith<Velmor::AV::MediaError>(
                    "Can not open media file: /nonexistent/a.mp4: No such file or directory"));
}

TEST(ExecutorFactoryTest, WithTheDecodersPluginDisabledNothingIsRead) {
    const RunningEngine engine({"DecodersFF"});
    const Core::ExecutorFactory factory;
    EXPECT_THAT([&] { factory.createFileParser(fixture("h264_aac.mp4"), {}); },
                FailedWith<Velmor::Core::PluginError>(
                    "Can not read media: the plug-in DecodersFF is disabled"));
}

TEST(ExecutorFactoryTest, ConstructionAndDestructionAreRecorded) {
    CallLog::clear();
    { const Core::ExecutorFactory factory; }
    const std::vector<std::string> expected{"Core::ExecutorFactory::ExecutorFactory",
                                            "Core::ExecutorFactory::~ExecutorFactory"};
    EXPECT_EQ(CallLog::entries(), expected);
}
