#include "platform/av/OutputFormats.h"

#include "platform/av/MediaError.h"
#include "tests/support/FailedWith.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using EditorService::Testing::FailedWith;
using Velmor::AV::containerFor;
using Velmor::AV::extensionOf;
using Velmor::AV::MediaError;
using Velmor::AV::PictureFormat;
using Velmor::AV::pictureFormatFor;

namespace {

TEST(OutputFormatsTest, TheExtensionIsTheTextAfterTheNamesLastDot) {
    EXPECT_EQ(extensionOf("a/b.c/clip.MOV"), "MOV");
    EXPECT_EQ(extensionOf("a/b.c/clip"), "");
    EXPECT_EQ(extensionOf("clip.tar.gz"), "gz");
    EXPECT_EQ(extensionOf("a/.hidden"), "");
    EXPECT_EQ(extensionOf("clip."), "");
}

TEST(OutputFormatsTest, AnExportsContainerFollowsItsExtensionInAnyCase) {
    EXPECT_EQ(containerFor("a.mp4", "mp4"), "mp4");
    EXPECT_EQ(containerFor("a.M4V", "mp4"), "mp4");
    EXPECT_EQ(containerFor("a.Mov", "mp4"), "mov");
    EXPECT_EQ(containerFor("a.MKV", "mp4"), "matroska");
    EXPECT_EQ(containerFor("dir.mkv/a", "mp4"), "mp4");
}

TEST(OutputFormatsTest, AnotherExtensionFailsNamingThePresetsContainer) {
    EXPECT_THAT([] { containerFor("a.AVI", "mp4"); },
                FailedWith<MediaError>("Can not write AVI files: the preset writes mp4"));
    EXPECT_THAT([] { containerFor("a.webm", "mov"); },
                FailedWith<MediaError>("Can not write webm files: the preset writes mov"));
}

TEST(OutputFormatsTest, APicturesFormatFollowsItsExtension) {
    EXPECT_EQ(pictureFormatFor("a.png"), PictureFormat::Png);
    EXPECT_EQ(pictureFormatFor("a"), PictureFormat::Png);
    EXPECT_EQ(pictureFormatFor("a.JPG"), PictureFormat::Jpeg);
    EXPECT_EQ(pictureFormatFor("a.jpeg"), PictureFormat::Jpeg);
    EXPECT_THAT([] { pictureFormatFor("a.gif"); },
                FailedWith<MediaError>("Can not write gif files: a thumbnail writes png or jpg"));
}

} // namespace
