#include "platform/export/EncoderLimits.h"

#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using Export::OutOfLimits;
using Export::requireBitrates;
using Export::requireFrameSize;

namespace {

Preset withBitrates(Export::BitrateMode mode, long long video, long long audio) {
    Preset preset;
    preset.setVideoBitrateMode(mode);
    preset.setVideoBitrateBps(video);
    preset.setAudioBitrateBps(audio);
    return preset;
}

TEST(EncoderLimitsTest, BitratesFromOneKilobitPassAndLessFails) {
    EXPECT_NO_THROW(
        requireBitrates(withBitrates(Export::BitrateMode::Bps, 1000, 1000), "libx264", "aac"));
    EXPECT_THAT(
        [] {
            requireBitrates(withBitrates(Export::BitrateMode::Auto, 999, 1000), "libx265", "aac");
        },
        FailedWith<OutOfLimits>("Video bitrate must be at least 1000 bps for libx265, is "
                                "999"));
    EXPECT_THAT(
        [] { requireBitrates(withBitrates(Export::BitrateMode::Bps, 1000, 5), "libx264", "aac"); },
        FailedWith<OutOfLimits>("Audio bitrate must be at least 1000 bps for aac, is 5"));
}

TEST(EncoderLimitsTest, AVideoBitrateThatQualityModeDoesNotUseIsNotChecked) {
    EXPECT_NO_THROW(
        requireBitrates(withBitrates(Export::BitrateMode::Quality, 1, 1000), "libx264", "aac"));
}

TEST(EncoderLimitsTest, FrameSizesInsideTheEncodersLimitsPass) {
    EXPECT_NO_THROW(requireFrameSize(2, 16384, "libx264", true, "in.mp4"));
    EXPECT_NO_THROW(requireFrameSize(16, 16, "libx265", true, "in.mp4"));
    // An odd side is encoded one smaller.
    EXPECT_NO_THROW(requireFrameSize(3, 16385, "libx264", false, "in.mp4"));
}

TEST(EncoderLimitsTest, FrameSizesOutsideFailNamingTheSizeAndTheLimits) {
    EXPECT_THAT([] { requireFrameSize(16386, 16386, "libx264", true, "in.mp4"); },
                FailedWith<OutOfLimits>(
                    "Frame size must be from 2:2 to 16384:16384 for libx264, is 16386:16386"));
    EXPECT_THAT([] { requireFrameSize(1, 1, "libx264", false, "in.mp4"); },
                FailedWith<OutOfLimits>("Video size 1:1 of in.mp4 is outside what libx264 writes, "
                                        "from 2:2 to 16384:16384; choose a size with "
                                        "--preset-frame-size"));
    EXPECT_THAT([] { requireFrameSize(14, 64, "libx265", true, "in.mp4"); },
                FailedWith<OutOfLimits>(
                    "Frame size must be from 16:16 to 16384:16384 for libx265, is 14:64"));
}

} // namespace
