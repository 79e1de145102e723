#include "platform/foundation/OutputFile.h"

#include "platform/foundation/OutputExists.h"
#include "platform/foundation/Temporaries.h"
#include "platform/foundation/TemporaryName.h"
#include "platform/foundation/WriteError.h"
#include "tests/support/FailedWith.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using EditorService::Testing::FailedWith;
using Velmor::OutputExists;
using Velmor::OutputFile;
using Velmor::TemporaryName;
using Velmor::WriteError;
using Existing = Velmor::OutputFile::Existing;

namespace {

void write(const OutputFile& file, const std::string& bytes) {
    ASSERT_EQ(::write(file.descriptor(), bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
}

QByteArray contents(const std::string& path) {
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        return "(unreadable)";
    return file.readAll();
}

bool listed(const std::string& path) {
    const auto paths = Velmor::Temporaries::paths();
    return std::find(paths.begin(), paths.end(), path) != paths.end();
}

// Letters in a known order: "AAAAAA", "BBBBBB", ...
OutputFile::Letters lettersInOrder() {
    auto next = std::make_shared<char>('A');
    return [next](std::size_t count) { return std::string(count, (*next)++); };
}

class OutputFileTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(directory.isValid()); }

    std::string path(const std::string& name) const {
        return directory.filePath(QString::fromStdString(name)).toStdString();
    }
    // The name the writer of `output` tries with these letters.
    std::string temporaryWith(const std::string& output, char letter) const {
        return path(TemporaryName{output, TemporaryName::thisHost(), ::getpid(),
                                  std::string(TemporaryName::letterCount, letter)}
                        .text());
    }
    QStringList files() const {
        return QDir(directory.path()).entryList(QDir::Files | QDir::System, QDir::Name);
    }
    // A file the test owns, for links to point at.
    std::string victim() {
        const std::string target = path("victim.txt");
        QFile file(QString::fromStdString(target));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("the victim's own bytes");
        return target;
    }
    static void link(const std::string& target, const std::string& at) {
        ASSERT_EQ(::symlink(target.c_str(), at.c_str()), 0) << at;
    }

    QTemporaryDir directory;
};

} // namespace

TEST_F(OutputFileTest, TheOutputAppearsOnlyWhenCommittedWithEveryByteWritten) {
    OutputFile file(path("out.bin"), Existing::Keep);
    write(file, "complete");
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path("out.bin"))));
    EXPECT_EQ(contents(file.temporaryPath()), "complete");
    EXPECT_EQ(file.size(), 8);
    file.commit();
    EXPECT_EQ(contents(path("out.bin")), "complete");
    EXPECT_EQ(files(), QStringList{"out.bin"});
    EXPECT_EQ(file.size(), 8);
    EXPECT_EQ(file.descriptor(), -1);
}

TEST_F(OutputFileTest, TheTemporaryIsBesideTheOutputNamedAfterItThisHostAndThisProcess) {
    OutputFile file(path("out.bin"), Existing::Keep);
    const QFileInfo temporary(QString::fromStdString(file.temporaryPath()));
    EXPECT_EQ(temporary.absolutePath(), QFileInfo(directory.path()).absoluteFilePath());
    const auto name = TemporaryName::parse(temporary.fileName().toStdString());
    ASSERT_TRUE(name);
    EXPECT_EQ(name->output, "out.bin");
    EXPECT_EQ(name->host, TemporaryName::thisHost());
    EXPECT_EQ(name->pid, ::getpid());
    EXPECT_EQ(name->letters.size(), TemporaryName::letterCount);
}

TEST_F(OutputFileTest, TheLettersDifferFromOneTemporaryToTheNext) {
    OutputFile first(path("out.bin"), Existing::Keep);
    OutputFile second(path("out.bin"), Existing::Keep);
    EXPECT_NE(first.temporaryPath(), second.temporaryPath());
}

TEST_F(OutputFileTest, TheTemporaryIsListedWhileItExists) {
    std::string temporary;
    {
        OutputFile file(path("out.bin"), Existing::Keep);
        temporary = file.temporaryPath();
        EXPECT_TRUE(listed(temporary));
        file.commit();
        EXPECT_FALSE(listed(temporary));
    }
    OutputFile dropped(path("other.bin"), Existing::Keep);
    EXPECT_TRUE(listed(dropped.temporaryPath()));
}

TEST_F(OutputFileTest, AFileDestroyedUncommittedLeavesNothingAndTheOldOutputAsItWas) {
    const std::string old = victim();
    std::string temporary;
    {
        OutputFile file(old, Existing::Replace);
        temporary = file.temporaryPath();
        write(file, "never shown");
    }
    EXPECT_EQ(contents(old), "the victim's own bytes");
    EXPECT_EQ(files(), QStringList{"victim.txt"});
    EXPECT_FALSE(listed(temporary));
}

TEST_F(OutputFileTest, LinksPlantedAtTheNamesItTriesAreSkippedAndTheirTargetStaysUnchanged) {
    const std::string target = victim();
    for (char letter : {'A', 'B', 'C'})
        link(target, temporaryWith("out.bin", letter));
    OutputFile file(path("out.bin"), Existing::Keep, lettersInOrder());
    EXPECT_EQ(file.temporaryPath(), temporaryWith("out.bin", 'D'));
    write(file, "ours");
    file.commit();
    EXPECT_EQ(contents(target), "the victim's own bytes");
    EXPECT_EQ(contents(path("out.bin")), "ours");
    EXPECT_FALSE(QFileInfo(QString::fromStdString(path("out.bin"))).isSymLink());
}

TEST_F(OutputFileTest, ALinkAtEveryNameItCouldChooseFailsWithFileExistsAndChangesNothing) {
    const std::string target = victim();
    link(target, temporaryWith("out.bin", 'A'));
    const auto sameLetters = [](std::size_t count) { return std::string(count, 'A'); };
    EXPECT_THAT([&] { OutputFile(path("out.bin"), Existing::Keep, sameLetters); },
                FailedWith<WriteError>("Can not write " + path("out.bin") + ": File exists"));
    EXPECT_EQ(contents(target), "the victim's own bytes");
    EXPECT_FALSE(QFile::exists(QString::fromStdString(path("out.bin"))));
    EXPECT_TRUE(Velmor::Temporaries::paths().empty());
}

TEST_F(OutputFileTest, ALinkAtTheOutputIsReplacedNeverFollowed) {
    const std::string target = victim();
    link(target, path("out.bin"));
    OutputFile file(path("out.bin"), Existing::Replace);
    write(file, "ours");
    file.commit();
    EXPECT_EQ(contents(target), "the victim's own bytes");
    EXPECT_FALSE(QFileInfo(QString::fromStdString(path("out.bin"))).isSymLink());
    EXPECT_EQ(contents(path("out.bin")), "ours");
}

TEST_F(OutputFileTest, ALinkAtAnOutputToBeKeptFailsAsAnExistingOutputAndStays) {
    const std::string target = victim();
    link(target, path("out.bin"));
    OutputFile file(path("out.bin"), Existing::Keep);
    write(file, "ours");
    EXPECT_THAT([&] { file.commit(); },
                FailedWith<OutputExists>("Output file exists: " + path("out.bin")));
    EXPECT_EQ(contents(target), "the victim's own bytes");
    EXPECT_TRUE(QFileInfo(QString::fromStdString(path("out.bin"))).isSymLink());
}

TEST_F(OutputFileTest, AnOutputThatAppearsWhileTheFileIsWrittenIsKept) {
    std::string temporary;
    {
        OutputFile file(path("out.bin"), Existing::Keep);
        temporary = file.temporaryPath();
        write(file, "second");
        QFile other(QString::fromStdString(path("out.bin")));
        ASSERT_TRUE(other.open(QIODevice::WriteOnly));
        other.write("first");
        other.close();
        EXPECT_THAT([&] { file.commit(); },
                    FailedWith<OutputExists>("Output file exists: " + path("out.bin")));
    }
    EXPECT_EQ(contents(path("out.bin")), "first");
    EXPECT_EQ(files(), QStringList{"out.bin"});
    EXPECT_FALSE(listed(temporary));
}

TEST_F(OutputFileTest, AnOutputThatAppearsWhileTheFileIsWrittenIsReplacedWhenAskedTo) {
    OutputFile file(path("out.bin"), Existing::Replace);
    write(file, "second");
    QFile other(QString::fromStdString(path("out.bin")));
    ASSERT_TRUE(other.open(QIODevice::WriteOnly));
    other.write("first");
    other.close();
    file.commit();
    EXPECT_EQ(contents(path("out.bin")), "second");
}

TEST_F(OutputFileTest, TheOutputsModeIsWhatTheUmaskLeaves) {
    for (const mode_t mask : {mode_t(027), mode_t(002), mode_t(077)}) {
        const mode_t before = ::umask(mask);
        OutputFile file(path("out.bin"), Existing::Replace);
        file.commit();
        ::umask(before);
        struct stat status {};
        ASSERT_EQ(::stat(path("out.bin").c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0666 & ~mask) << std::oct << mask;
    }
}

TEST_F(OutputFileTest, AMissingFolderFailsWithTheSystemsReason) {
    const std::string missing = path("missing/out.bin");
    EXPECT_THAT([&] { OutputFile(missing, Existing::Keep); },
                FailedWith<WriteError>("Can not write " + missing + ": No such file or directory"));
}

TEST_F(OutputFileTest, AFolderThatCanNotBeWrittenFailsWithTheSystemsReason) {
    // Root writes anywhere chmod forbids; nobody creates files in /sys.
    std::string locked = "/sys";
    if (::geteuid() != 0) {
        locked = path("locked");
        ASSERT_EQ(::mkdir(locked.c_str(), 0555), 0);
    }
    EXPECT_THAT([&] { OutputFile(locked + "/out.bin", Existing::Keep); },
                FailedWith<WriteError>("Can not write " + locked + "/out.bin: Permission denied"));
}

TEST_F(OutputFileTest, AFolderThatCanBeWrittenButNotReadTakesItsOutput) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "root reads any folder";
    const std::string dropBox = path("drop");
    ASSERT_EQ(::mkdir(dropBox.c_str(), 0300), 0);
    OutputFile file(dropBox + "/out.bin", Existing::Keep);
    write(file, "ours");
    file.commit();
    ::chmod(dropBox.c_str(), 0700);
    EXPECT_EQ(contents(dropBox + "/out.bin"), "ours");
}

TEST_F(OutputFileTest, APathThatNamesNoFileFailsAsAFolder) {
    const std::string folder = path("") + "/";
    EXPECT_THAT([&] { OutputFile(folder, Existing::Replace); },
                FailedWith<WriteError>("Can not write " + folder + ": Is a directory"));
}

TEST_F(OutputFileTest, ReplacingAFolderFailsWithTheSystemsReasonAndLeavesNothing) {
    ASSERT_EQ(::mkdir(path("out").c_str(), 0700), 0);
    OutputFile file(path("out"), Existing::Replace);
    EXPECT_THAT([&] { file.commit(); },
                FailedWith<WriteError>("Can not write " + path("out") + ": Is a directory"));
}

TEST_F(OutputFileTest, ARelativePathIsWrittenInTheWorkingFolder) {
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(directory.path()));
    {
        OutputFile file("out.bin", Existing::Keep);
        EXPECT_EQ(file.temporaryPath().find('/'), std::string::npos);
        EXPECT_TRUE(listed(file.temporaryPath()));
        write(file, "here");
        file.commit();
    }
    QDir::setCurrent(before);
    EXPECT_EQ(contents(path("out.bin")), "here");
}

TEST_F(OutputFileTest, CommittingTwiceIsAMistake) {
    OutputFile file(path("out.bin"), Existing::Keep);
    file.commit();
    EXPECT_THAT([&] { file.commit(); },
                FailedWith<std::logic_error>("Can not write " + path("out.bin")
                                             + ": it was committed already"));
}
