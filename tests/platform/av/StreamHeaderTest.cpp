#include "platform/av/StreamHeader.h"

#include "platform/av/Demuxer.h"
#include "tests/support/MediaFixtures.h"

#include <gtest/gtest.h>

using EditorService::Testing::mediaFixture;
using Velmor::AV::Demuxer;
using Velmor::AV::streamHeader;

TEST(StreamHeaderTest, NamesTheCodecAndSizeAndHoldsTheParameterSets) {
    const Demuxer demuxer(mediaFixture("h264_aac.mp4"));
    const std::string header = streamHeader(demuxer, demuxer.bestStream("video"));
    EXPECT_EQ(header.rfind("h264 320 240 ", 0), 0u) << header;
    // After the line of values, avcC: version 1, then the profile.
    const std::size_t configuration = header.find('\n') + 1;
    ASSERT_LT(configuration, header.size());
    EXPECT_EQ(header[configuration], 1);
}

TEST(StreamHeaderTest, StreamsEncodedAlikeHaveOneHeaderAndAnotherSizeAnother) {
    const Demuxer clip(mediaFixture("h264_aac.mp4"));
    // Encoded apart with the same settings.
    const Demuxer again(mediaFixture("noaudio.mp4"));
    const Demuxer other(mediaFixture("hd_720p.mp4"));
    EXPECT_EQ(streamHeader(clip, clip.bestStream("video")),
              streamHeader(again, again.bestStream("video")));
    EXPECT_NE(streamHeader(clip, clip.bestStream("video")),
              streamHeader(other, other.bestStream("video")));
    EXPECT_NE(streamHeader(clip, clip.bestStream("audio")),
              streamHeader(clip, clip.bestStream("video")));
}
