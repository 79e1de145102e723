#include "platform/editorlogic/StreamProvider.h"

#include "platform/av/Frame.h"
#include "platform/av/MediaError.h"
#include "platform/editorlogic/DecodedVideoStream.h"
#include "platform/editorlogic/ExecutorFactory.h"
#include "platform/editorlogic/StreamProcessorFactory.h"
#include "platform/editorlogic/VideoStreamCutter.h"
#include "platform/foundation/CallLog.h"
#include "tests/platform/editorlogic/RunningEngine.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::RunningEngine;
using Velmor::Testing::CallLog;

namespace {

QString fixture(const std::string& name) {
    return QString::fromStdString(mediaFixture(name));
}

class StreamProviderTest : public testing::Test {
protected:
    std::unique_ptr<Media::StreamProvider> provider(int cacheLifetime) {
        return std::make_unique<Media::StreamProvider>(&executors, &executors, &processors,
                                                       &processors, cacheLifetime);
    }

    RunningEngine engine;
    Core::ExecutorFactory executors;
    Core::StreamProcessorFactory processors;
};

} // namespace

TEST_F(StreamProviderTest, KeepsAndRecordsTheCacheLifetimeAsGiven) {
    CallLog::clear();
    provider(-3).reset();
    const std::vector<std::string> expected{"Media::StreamProvider::StreamProvider(-3)",
                                            "Media::StreamProvider::~StreamProvider"};
    EXPECT_EQ(CallLog::entries(), expected);
    EXPECT_EQ(provider(5000)->cacheLifetime(), 5000);
}

TEST_F(StreamProviderTest, HandsOutTheBestVideoStreamOnItsTimes) {
    const auto streams = provider(5000);
    const auto stream = streams->videoStream(fixture("h264_aac.mp4"));
    EXPECT_EQ(stream->path(), fixture("h264_aac.mp4"));
    EXPECT_EQ(stream->decoder().streamIndex(), 0);
    EXPECT_EQ(stream->cutter().frameAt(1000).width(), 320);
}

TEST_F(StreamProviderTest, AStreamLetGoIsHandedOutAgainWithoutOpeningTheFile) {
    const auto streams = provider(60000);
    streams->videoStream(fixture("noaudio.mp4"));
    EXPECT_EQ(streams->cachedStreams(), 1);
    streams->videoStream(fixture("noaudio.mp4"));
    EXPECT_EQ(streams->openedStreams(), 1);
}

TEST_F(StreamProviderTest, AStreamInUseIsNotHandedOutTwice) {
    const auto streams = provider(60000);
    const auto first = streams->videoStream(fixture("noaudio.mp4"));
    const auto second = streams->videoStream(fixture("noaudio.mp4"));
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(streams->openedStreams(), 2);
}

TEST_F(StreamProviderTest, ALifetimeOfZeroCachesNothing) {
    const auto streams = provider(0);
    streams->videoStream(fixture("noaudio.mp4"));
    EXPECT_EQ(streams->cachedStreams(), 0);
    streams->videoStream(fixture("noaudio.mp4"));
    EXPECT_EQ(streams->openedStreams(), 2);
}

TEST_F(StreamProviderTest, ACachedStreamIsClosedOnceItsLifetimeHasPassed) {
    const auto streams = provider(50);
    streams->videoStream(fixture("noaudio.mp4"));
    EXPECT_EQ(streams->cachedStreams(), 1);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(60);
    while (streams->cachedStreams() != 0 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(streams->cachedStreams(), 0);
}

TEST_F(StreamProviderTest, AStreamOutlivingTheProviderIsClosedWhenLetGo) {
    auto streams = provider(60000);
    auto stream = streams->videoStream(fixture("noaudio.mp4"));
    streams.reset();
    EXPECT_NO_THROW(stream.reset());
}

TEST_F(StreamProviderTest, AFileWithoutVideoFailsNamingIt) {
    const auto streams = provider(5000);
    EXPECT_THAT(
        [&] { streams->videoStream(fixture("tone.wav")); },
        FailedWith<Velmor::AV::MediaError>("No video stream in " + mediaFixture("tone.wav")));
}

TEST_F(StreamProviderTest, InstanceIsTheLastProviderStillAlive) {
    EXPECT_EQ(Media::StreamProvider::instance(), nullptr);
    {
        const auto streams = provider(0);
        EXPECT_EQ(Media::StreamProvider::instance(), streams.get());
    }
    EXPECT_EQ(Media::StreamProvider::instance(), nullptr);
}
