#include "platform/foundation/ioPath.h"

#include <gtest/gtest.h>

using Velmor::ioPath;

TEST(ioPathTest, RemovesDoubledSeparatorsAndDotParts) {
    EXPECT_EQ(QString(ioPath("data//clips/./old/../intro.mp4")), "data/clips/intro.mp4");
}

TEST(ioPathTest, KeepsABareFileNameRelative) {
    const ioPath path("ReelSmithCustom.ini");
    EXPECT_FALSE(path.IsAbsolute());
    EXPECT_EQ(path.ToQString(), "ReelSmithCustom.ini");
    EXPECT_EQ(path.FileName(), "ReelSmithCustom.ini");
}

TEST(ioPathTest, KnowsAnAbsolutePath) {
    const ioPath path("/var/lib/reelsmith/fonts");
    EXPECT_TRUE(path.IsAbsolute());
    EXPECT_EQ(path.FileName(), "fonts");
}

TEST(ioPathTest, IsEmptyWhenBuiltFromNothing) {
    EXPECT_TRUE(ioPath().IsEmpty());
    EXPECT_TRUE(ioPath("").IsEmpty());
    EXPECT_FALSE(ioPath().IsAbsolute());
}

TEST(ioPathTest, BuildsTheSamePathFromQStringAndCharacters) {
    EXPECT_EQ(ioPath(QStringLiteral("a/b")), ioPath("a/b"));
    EXPECT_NE(ioPath("a/b"), ioPath("a/c"));
}

TEST(ioPathTest, JoinsAnEntryToADirectory) {
    EXPECT_EQ(ioPath("/home/user/.local/share") / "fonts", ioPath("/home/user/.local/share/fonts"));
    EXPECT_EQ(ioPath("/home/user/") / "fonts", ioPath("/home/user/fonts"));
    EXPECT_EQ(ioPath() / "fonts", ioPath("fonts"));
}

TEST(ioPathTest, ConvertsToQStringWhereOneIsExpected) {
    const QString text = ioPath("clips/intro.mp4");
    EXPECT_EQ(text, "clips/intro.mp4");
}
