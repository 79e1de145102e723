#include "platform/editorlogic/StreamProcessorFactory.h"

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/editorlogic/VideoStreamCutter.h"
#include "platform/foundation/CallLog.h"
#include "tests/support/MediaFixtures.h"

#include <gtest/gtest.h>

using EditorService::Testing::mediaFixture;
using Velmor::Testing::CallLog;

TEST(StreamProcessorFactoryTest, MakesAVideoCutterOnTheStreamItIsGiven) {
    const Core::StreamProcessorFactory factory;
    Velmor::AV::Demuxer demuxer(mediaFixture("noaudio.mp4"));
    Velmor::AV::Decoder decoder(demuxer, 0);
    const auto cutter = factory.createVideoStreamCutter(demuxer, decoder);
    EXPECT_EQ(cutter->frameAt(400).width(), 320);
    EXPECT_EQ(cutter->frameMilliseconds(), 400);
}

TEST(StreamProcessorFactoryTest, NamesAudioCuttersByCodec) {
    const Core::StreamProcessorFactory factory;
    EXPECT_EQ(factory.audioStreamCutterFor("aac"), "AudioStreamCutter:aac");
}

TEST(StreamProcessorFactoryTest, ConstructionAndDestructionAreRecorded) {
    CallLog::clear();
    { const Core::StreamProcessorFactory factory; }
    const std::vector<std::string> expected{
        "Core::StreamProcessorFactory::StreamProcessorFactory",
        "Core::StreamProcessorFactory::~StreamProcessorFactory"};
    EXPECT_EQ(CallLog::entries(), expected);
}
