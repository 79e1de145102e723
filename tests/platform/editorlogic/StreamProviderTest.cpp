#include "platform/editorlogic/StreamProvider.h"

#include "platform/editorlogic/ExecutorFactory.h"
#include "platform/editorlogic/StreamProcessorFactory.h"
#include "platform/foundation/CallLog.h"

#include <gtest/gtest.h>

using Velmor::Testing::CallLog;

TEST(StreamProviderTest, ChainsTheCutterAndTheDecoderOfACodec) {
    Core::ExecutorFactory executors;
    Core::StreamProcessorFactory processors;
    const Media::StreamProvider provider(&executors, &executors, &processors, &processors, 5000);
    EXPECT_EQ(provider.videoChainFor("h264"), "VideoStreamCutter:h264 -> VideoDecoder:h264");
    EXPECT_EQ(provider.audioChainFor("aac"), "AudioStreamCutter:aac -> AudioDecoder:aac");
}

TEST(StreamProviderTest, KeepsAndRecordsTheCacheLifetimeAsGiven) {
    Core::ExecutorFactory executors;
    Core::StreamProcessorFactory processors;
    CallLog::clear();
    {
        const Media::StreamProvider provider(&executors, &executors, &processors, &processors, -3);
        EXPECT_EQ(provider.cacheLifetime(), -3);
    }
    const std::vector<std::string> expected{"Media::StreamProvider::StreamProvider(-3)",
                                            "Media::StreamProvider::~StreamProvider"};
    EXPECT_EQ(CallLog::entries(), expected);
}
