#include "media/MediaPath.h"

#include <QCommandLineOption>
#include <gtest/gtest.h>

using EditorService::withPathOption;

namespace {

const QCommandLineOption path(QStringLiteral("path"), QString(), QStringLiteral("path"));
const QCommandLineOption output(QStringLiteral("output"), QString(), QStringLiteral("file"));
const QList<QCommandLineOption> options{path, output};

} // namespace

TEST(MediaPathTest, TheFirstPositionalArgumentBecomesThePathOptionAfterTheProgramPath) {
    EXPECT_EQ(withPathOption({"probe", "clip.mp4"}, options, path),
              (QStringList{"probe", "--path=clip.mp4", "clip.mp4"}));
}

TEST(MediaPathTest, AnOptionsSeparateValueIsNoPositionalArgument) {
    EXPECT_EQ(withPathOption({"thumbnail", "--output", "t.png", "clip.mp4"}, options, path),
              (QStringList{"thumbnail", "--path=clip.mp4", "--output", "t.png", "clip.mp4"}));
}

TEST(MediaPathTest, OnlyTheFirstOfSeveralPositionalArgumentsIsThePath) {
    EXPECT_EQ(withPathOption({"probe", "a.mp4", "b.mp4"}, options, path),
              (QStringList{"probe", "--path=a.mp4", "a.mp4", "b.mp4"}));
}

TEST(MediaPathTest, AnExplicitPathOptionWinsAndNothingChanges) {
    const QStringList arguments{"probe", "--path=a.mp4", "b.mp4"};
    EXPECT_EQ(withPathOption(arguments, options, path), arguments);
}

TEST(MediaPathTest, WithoutAPositionalArgumentNothingChanges) {
    const QStringList arguments{"thumbnail", "--output=t.png"};
    EXPECT_EQ(withPathOption(arguments, options, path), arguments);
}

TEST(MediaPathTest, AnEmptyListStaysEmptyWithoutAWarning) {
    testing::internal::CaptureStderr();
    EXPECT_EQ(withPathOption({}, options, path), QStringList());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MediaPathTest, APathBehindTheSeparatorMayStartWithADash) {
    EXPECT_EQ(withPathOption({"probe", "--", "-odd.mp4"}, options, path),
              (QStringList{"probe", "--path=-odd.mp4", "--", "-odd.mp4"}));
}

TEST(MediaPathTest, APathWithPlaceholdersAndSpacesIsKeptAsItIs) {
    EXPECT_EQ(withPathOption({"probe", "a %1 b=c.mp4"}, options, path),
              (QStringList{"probe", "--path=a %1 b=c.mp4", "a %1 b=c.mp4"}));
}
