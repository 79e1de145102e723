#include "platform/render/SharedDemuxer.h"

#include "platform/av/Demuxer.h"
#include "platform/av/Packet.h"
#include "platform/render/Cancelled.h"
#include "platform/render/Stop.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>
#include <utility>
#include <vector>

using EditorService::Testing::FailedWith;
using EditorService::Testing::mediaFixture;
using Velmor::AV::Demuxer;
using Velmor::AV::Packet;
using Velmor::Render::Cancelled;
using Velmor::Render::SharedDemuxer;
using Velmor::Render::Stop;

namespace {

using Times = std::vector<std::int64_t>;

// The timestamps of each stream's packets in file order, as one plain read gives them.
std::pair<Times, Times> plainRead(const std::string& path, int video, int audio) {
    Demuxer demuxer(path);
    std::pair<Times, Times> times;
    Packet packet;
    while (demuxer.read(packet)) {
        if (packet.streamIndex() == video)
            times.first.push_back(packet.timestamp());
        if (packet.streamIndex() == audio)
            times.second.push_back(packet.timestamp());
    }
    return times;
}

Times readAll(SharedDemuxer& shared, int stream) {
    Times times;
    Packet packet;
    while (shared.next(stream, packet)) {
        EXPECT_EQ(packet.streamIndex(), stream);
        times.push_back(packet.timestamp());
    }
    return times;
}

class SharedDemuxerTest : public testing::Test {
protected:
    const std::string path = mediaFixture("h264_aac.mp4");
    Demuxer demuxer{path};
    const int video = demuxer.bestStream("video");
    const int audio = demuxer.bestStream("audio");
    const std::pair<Times, Times> expected = plainRead(path, video, audio);
    Stop stop;
};

} // namespace

TEST_F(SharedDemuxerTest, TwoConsumersOnTwoThreadsGetTheirStreamsPacketsInFileOrder) {
    SharedDemuxer shared(demuxer, stop);
    shared.keep(video);
    shared.keep(audio);
    shared.limit(2);
    Times audioTimes;
    std::thread sound([&] { audioTimes = readAll(shared, audio); });
    const Times videoTimes = readAll(shared, video);
    sound.join();
    EXPECT_EQ(videoTimes, expected.first);
    EXPECT_EQ(audioTimes, expected.second);
    EXPECT_FALSE(expected.first.empty());
}

TEST_F(SharedDemuxerTest, BeforeALimitOneConsumerReadsAloneAndTheOtherStreamWaitsWhole) {
    SharedDemuxer shared(demuxer, stop);
    shared.keep(video);
    shared.keep(audio);
    EXPECT_EQ(readAll(shared, video), expected.first);
    EXPECT_EQ(readAll(shared, audio), expected.second);
}

TEST_F(SharedDemuxerTest, AFinishedStreamsPacketsAreDroppedSoTheOtherReadsAlone) {
    SharedDemuxer shared(demuxer, stop);
    shared.keep(video);
    shared.keep(audio);
    shared.limit(1);
    shared.finish(video);
    EXPECT_EQ(readAll(shared, audio), expected.second);
    Packet packet;
    EXPECT_FALSE(shared.next(video, packet));
}

TEST_F(SharedDemuxerTest, AStreamNobodyKeepsIsDropped) {
    SharedDemuxer shared(demuxer, stop);
    shared.keep(audio);
    shared.limit(1);
    EXPECT_EQ(readAll(shared, audio), expected.second);
}

TEST_F(SharedDemuxerTest, AStoppedRenderEndsEveryConsumerWithCancelled) {
    SharedDemuxer shared(demuxer, stop);
    shared.keep(video);
    shared.keep(audio);
    stop.request();
    Packet packet;
    EXPECT_THAT([&] { shared.next(video, packet); }, FailedWith<Cancelled>("Render cancelled"));
}

TEST_F(SharedDemuxerTest, TheStopReleasesAReaderWaitingForAFullQueue) {
    SharedDemuxer shared(demuxer, stop);
    shared.keep(video);
    shared.keep(audio);
    shared.limit(1);
    // Nobody takes the sound: the video's reader waits once a packet of it is queued.
    std::exception_ptr failure;
    std::thread picture(
        [&] { failure = EditorService::Testing::failureOf([&] { readAll(shared, video); }); });
    stop.request();
    picture.join();
    EXPECT_THAT(failure, FailedWith<Cancelled>("Render cancelled"));
}
