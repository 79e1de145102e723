#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

extern "C" {
#include <libavutil/error.h>
}

using EditorService::Testing::FailedWith;
using Velmor::AV::check;
using Velmor::AV::errorText;
using Velmor::AV::MediaError;

TEST(MediaErrorTest, ErrorTextIsTheLibrarysOwnWords) {
    EXPECT_EQ(errorText(AVERROR(ENOENT)), "No such file or directory");
    EXPECT_EQ(errorText(AVERROR_INVALIDDATA), "Invalid data found when processing input");
}

TEST(MediaErrorTest, CheckPassesANonNegativeResultThrough) {
    EXPECT_EQ(check(0, "Doing"), 0);
    EXPECT_EQ(check(42, "Doing"), 42);
}

TEST(MediaErrorTest, CheckThrowsWhatWasDoneAndTheReason) {
    EXPECT_THAT([&] { check(AVERROR(EACCES), "Can not open media file: a.mp4"); },
                FailedWith<MediaError>("Can not open media file: a.mp4: Permission denied"));
}
