#include "platform/render/AudioSpan.h"

#include <gtest/gtest.h>
#include <limits>

using Velmor::Render::AudioSpan;

namespace {

constexpr std::int64_t endless = std::numeric_limits<std::int64_t>::max();

void expectCut(const AudioSpan::Cut& cut, std::int64_t skip, std::int64_t keep, std::int64_t time) {
    EXPECT_EQ(cut.skip, skip);
    EXPECT_EQ(cut.keep, keep);
    EXPECT_EQ(cut.time, time);
    EXPECT_FALSE(cut.past);
}

} // namespace

TEST(AudioSpanTest, ABlockAcrossTheStartKeepsItsSamplesFromTheStartOnAtZero) {
    expectCut(AudioSpan(22050, 66150).cut(21504, 1024), 546, 478, 0);
}

TEST(AudioSpanTest, ABlockInsideIsKeptWholeAtItsOffsetFromTheStart) {
    expectCut(AudioSpan(22050, 66150).cut(30000, 1024), 0, 1024, 7950);
}

TEST(AudioSpanTest, ABlockAcrossTheEndKeepsItsSamplesBeforeTheEnd) {
    expectCut(AudioSpan(22050, 66150).cut(65536, 1024), 0, 614, 43486);
}

TEST(AudioSpanTest, ABlockAroundTheWholeSpanKeepsExactlyTheSpan) {
    expectCut(AudioSpan(100, 300).cut(0, 1024), 100, 200, 0);
}

TEST(AudioSpanTest, ABlockBeforeTheStartKeepsNothing) {
    const AudioSpan::Cut cut = AudioSpan(22050, 66150).cut(0, 1024);
    EXPECT_EQ(cut.keep, 0);
    EXPECT_FALSE(cut.past);
}

TEST(AudioSpanTest, ABlockEndingExactlyAtTheStartKeepsNothing) {
    EXPECT_EQ(AudioSpan(1024, endless).cut(0, 1024).keep, 0);
}

TEST(AudioSpanTest, ABlockAtTheEndIsPastIt) {
    EXPECT_TRUE(AudioSpan(0, 1024).cut(1024, 10).past);
    EXPECT_TRUE(AudioSpan(0, 1024).cut(5000, 10).past);
}

TEST(AudioSpanTest, SoundThatStartsAfterThePictureKeepsItsOffset) {
    expectCut(AudioSpan(0, endless).cut(441, 1024), 0, 1024, 441);
}

TEST(AudioSpanTest, AnEmptyBlockKeepsNothingAndIsNotTheEnd) {
    const AudioSpan::Cut cut = AudioSpan(0, 100).cut(200, 0);
    EXPECT_EQ(cut.keep, 0);
    EXPECT_FALSE(cut.past);
}

TEST(AudioSpanTest, BlocksCutOneAfterAnotherKeepTheSpansLengthToTheSample) {
    const AudioSpan span(1000, 45100);
    std::int64_t kept = 0;
    for (std::int64_t start = 0;; start += 1024) {
        const AudioSpan::Cut cut = span.cut(start, 1024);
        if (cut.past)
            break;
        if (cut.keep > 0) {
            EXPECT_EQ(cut.time, kept);
        }
        kept += cut.keep;
    }
    EXPECT_EQ(kept, 44100);
}
