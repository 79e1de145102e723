#include "platform/foundation/StaleTemporaries.h"

#include "platform/foundation/TemporaryName.h"
#include "tests/support/LogCapture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

using Velmor::StaleTemporaries;
using Velmor::TemporaryName;

namespace {

// The pid of a process that has ended.
long endedProcess() {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(0);
    int status = 0;
    ::waitpid(child, &status, 0);
    return child;
}

class StaleTemporariesTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(directory.isValid());
        folder = ::open(QFile::encodeName(directory.path()).constData(),
                        O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ASSERT_GE(folder, 0);
    }
    void TearDown() override { ::close(folder); }

    std::string prefix() const { return directory.path().toStdString() + "/"; }

    // A file named as a temporary of `output`.
    std::string plant(const std::string& output, const std::string& host, long pid,
                      const std::string& letters = "abcdef") {
        const std::string name = TemporaryName{output, host, pid, letters}.text();
        QFile file(directory.filePath(QString::fromStdString(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("partial");
        return name;
    }

    QStringList files() const {
        return QDir(directory.path()).entryList(QDir::Files | QDir::System, QDir::Name);
    }

    std::vector<std::string> removeFor(const std::string& output) {
        return StaleTemporaries::removeFor(folder, prefix(), output);
    }

    const std::string& host = TemporaryName::thisHost();
    QTemporaryDir directory;
    int folder = -1;
};

} // namespace

TEST_F(StaleTemporariesTest, ATemporaryOfAProcessOfThisHostThatEndedIsRemovedWithAWarning) {
    const long pid = endedProcess();
    const std::string stale = plant("out.mp4", host, pid);
    EditorService::Testing::LogCapture log;
    EXPECT_EQ(removeFor("out.mp4"), std::vector<std::string>{prefix() + stale});
    EXPECT_TRUE(files().isEmpty());
    EXPECT_EQ(log.messages(), std::vector<std::string>{"Removed the stale temporary " + prefix()
                                                       + stale + ": process " + std::to_string(pid)
                                                       + " of this host no longer runs"});
}

TEST_F(StaleTemporariesTest, ATemporaryOfAProcessThatRunsStays) {
    plant("out.mp4", host, ::getpid());
    plant("out.mp4", host, 1);
    EXPECT_TRUE(removeFor("out.mp4").empty());
    EXPECT_EQ(files().size(), 2);
}

TEST_F(StaleTemporariesTest, ATemporaryOfAnotherHostStaysWhateverItsPid) {
    plant("out.mp4", host + "-elsewhere", endedProcess());
    EXPECT_TRUE(removeFor("out.mp4").empty());
    EXPECT_EQ(files().size(), 1);
}

TEST_F(StaleTemporariesTest, ATemporaryOfAnotherOutputStaysUntilThatOutputIsWritten) {
    const std::string other = plant("other.mp4", host, endedProcess());
    EXPECT_TRUE(removeFor("out.mp4").empty());
    EXPECT_EQ(files(), QStringList{QString::fromStdString(other)});
    EXPECT_EQ(removeFor("other.mp4"), std::vector<std::string>{prefix() + other});
}

TEST_F(StaleTemporariesTest, ALinkNamedAsAStaleTemporaryStays) {
    const std::string name = TemporaryName{"out.mp4", host, endedProcess(), "abcdef"}.text();
    ASSERT_TRUE(QFile::link("/etc/hostname", directory.filePath(QString::fromStdString(name))));
    EXPECT_TRUE(removeFor("out.mp4").empty());
    EXPECT_TRUE(QFileInfo(directory.filePath(QString::fromStdString(name))).isSymLink());
}

TEST_F(StaleTemporariesTest, AFolderIsListedOnlyTheFirstTimeAnOutputIsWrittenThere) {
    EXPECT_TRUE(removeFor("out.mp4").empty());
    plant("out.mp4", host, endedProcess());
    EXPECT_TRUE(removeFor("out.mp4").empty());
    EXPECT_EQ(files().size(), 1);
}
