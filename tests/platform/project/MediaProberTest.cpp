#include "platform/project/MediaProber.h"
#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"
#include "tests/support/MediaFixtures.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace EditorService::Testing;
using namespace Project;

namespace {

MediaFacts probed(const std::string& name) {
    return FileProber().probe(QString::fromStdString(mediaFixture(name)));
}

TEST(MediaProberTest, AVideoTellsItsLengthSizeAndRate) {
    const MediaFacts facts = probed("h264_aac.mp4");
    EXPECT_EQ(facts.durationMs, 2000);
    EXPECT_TRUE(facts.hasVideo);
    EXPECT_TRUE(facts.hasAudio);
    EXPECT_FALSE(facts.isStill);
    EXPECT_EQ(facts.width, 320);
    EXPECT_EQ(facts.height, 240);
    EXPECT_EQ(facts.frameRate, (Velmor::AV::Rational{25, 1}));
}

TEST(MediaProberTest, APictureIsStill) {
    const MediaFacts facts = probed("still.png");
    EXPECT_TRUE(facts.isStill);
    EXPECT_TRUE(facts.hasVideo);
    EXPECT_EQ(facts.width, 64);
}

TEST(MediaProberTest, SoundHasNoPicture) {
    const MediaFacts facts = probed("tone.wav");
    EXPECT_FALSE(facts.hasVideo);
    EXPECT_TRUE(facts.hasAudio);
    EXPECT_EQ(facts.durationMs, 1000);
}

TEST(MediaProberTest, AMissingFileFailsAsOpeningDoes) {
    EXPECT_THAT([] { FileProber().probe("/no/such.mp4"); },
                FailedWith<Velmor::AV::MediaError>(
                    "Can not open media file: /no/such.mp4: No such file or directory"));
}

} // namespace
