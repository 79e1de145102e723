#include "platform/editorlogic/StreamProcessorFactory.h"

#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>

using Velmor::Testing::CallLog;

TEST(StreamProcessorFactoryTest, NamesCuttersByCodec) {
    const Core::StreamProcessorFactory factory;
    EXPECT_EQ(factory.videoStreamCutterFor("h264"), "VideoStreamCutter:h264");
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
