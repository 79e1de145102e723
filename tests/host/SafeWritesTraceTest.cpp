#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/host/OutputWriters.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using EditorService::Testing::OutputWriter;
using EditorService::Testing::outputWriters;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runTool;
using EditorService::Testing::ToolRun;

namespace {

// The calls that create, open, rename, link and flush files, and what strace shows of each: the
// descriptor it is relative to, the name, and the flags; with -y, the path of each descriptor.
const QString fileCalls = QStringLiteral(
    "trace=open,openat,openat2,creat,rename,renameat,renameat2,link,linkat,fsync,fdatasync");
const QRegularExpression openCall(
    QString::fromUtf8(R"re((?:open|openat|openat2|creat)\((?:[^,]+, )?"([^"]*)", ([^,)]*))re"));

// The host seen from outside by strace, which records the file calls it makes and can make
// some of them fail. Skips when the machine can't trace.
class SafeWritesTraceTest : public testing::TestWithParam<OutputWriter> {
protected:
    void SetUp() override {
        ASSERT_TRUE(directory.isValid());
        const ToolRun probe = runTool("strace", {"-qq", "-o", "/dev/null", "true"});
        if (!probe.started || probe.exitCode != 0)
            GTEST_SKIP() << "strace can not trace here";
        // LeakSanitizer can't run in a traced process and ends it with an error of its own.
        qputenv("ASAN_OPTIONS", sanitizerOptions + ":detect_leaks=0");
    }
    void TearDown() override { qputenv("ASAN_OPTIONS", sanitizerOptions); }

    QString output() const { return directory.filePath(GetParam().file); }
    QStringList files() const {
        return QDir(directory.path()).entryList(QDir::Files | QDir::System, QDir::Name);
    }

    // The trace's lines of a run that must succeed; `faults` are strace's -e inject= rules.
    QList<QByteArray> traced(const QStringList& arguments, const QStringList& faults = {}) {
        const QString log = directory.filePath(QStringLiteral("trace%1.log").arg(++runs));
        QStringList options{"-f", "-qq", "-y", "-e", fileCalls, "-o", log};
        for (const QString& fault : faults)
            options << "-e"
                    << "inject=" + fault;
        const ToolRun run = runTool("strace", options + QStringList{REELSMITH_HOST} + arguments);
        EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
        QFile file(log);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QList<QByteArray> lines = file.readAll().split('\n');
        file.remove();
        return lines;
    }

    // Every file the run created was a temporary of the output, created exclusively and
    // without following a link; the output itself was never opened, by its path or its name.
    void expectOnlyExclusiveTemporaries(const QList<QByteArray>& lines) const {
        const QString name = GetParam().file;
        int created = 0;
        for (const QByteArray& line : lines) {
            const auto call = openCall.match(QString::fromUtf8(line));
            if (!call.hasMatch())
                continue;
            const QString opened = call.captured(1);
            const QString flags = call.captured(2);
            EXPECT_NE(QFileInfo(opened).fileName(), name) << line.toStdString();
            if (!flags.contains("O_CREAT"))
                continue;
            ++created;
            EXPECT_TRUE(flags.contains("O_EXCL")) << line.toStdString();
            EXPECT_TRUE(flags.contains("O_NOFOLLOW")) << line.toStdString();
            EXPECT_TRUE(QFileInfo(opened).fileName().startsWith(name + ".reelsmith-partial-"))
                << line.toStdString();
        }
        EXPECT_EQ(created, 1);
    }

    // The number of the first line that contains `text` after line `from`; -1 when none does.
    static int lineContaining(const QList<QByteArray>& lines, const QByteArray& text, int from) {
        for (int index = from + 1; index < lines.size(); ++index) {
            if (lines[index].contains(text))
                return index;
        }
        return -1;
    }

    static int countContaining(const QList<QByteArray>& lines, const QByteArray& text) {
        int count = 0;
        for (const QByteArray& line : lines)
            count += line.contains(text) ? 1 : 0;
        return count;
    }

    QuietHostSanitizer quietSanitizer;
    const QByteArray sanitizerOptions = qgetenv("ASAN_OPTIONS");
    QTemporaryDir directory;
    int runs = 0;
};

} // namespace

TEST_P(SafeWritesTraceTest, ANewOutputIsCreatedExclusivelyAndPutInPlaceWithoutReplacing) {
    const auto lines = traced(GetParam().quick(output(), 0));
    expectOnlyExclusiveTemporaries(lines);
    EXPECT_EQ(countContaining(lines, ", RENAME_NOREPLACE) = 0"), 1);
    EXPECT_EQ(files(), QStringList{GetParam().file});
}

TEST_P(SafeWritesTraceTest, AnOverwrittenOutputIsCreatedExclusivelyAndRenamedOverTheOldOne) {
    QFile old(output());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.close();
    const auto lines = traced(GetParam().quick(output(), 0) + QStringList{"--overwrite"});
    expectOnlyExclusiveTemporaries(lines);
    EXPECT_EQ(countContaining(lines, "renameat("), 1);
    EXPECT_EQ(countContaining(lines, "RENAME_NOREPLACE"), 0);
    EXPECT_GT(QFileInfo(output()).size(), 0);
}

// So that a power cut after the rename finds the whole output: its bytes reach the disk before
// the rename, and the folder's entry after it.
TEST_P(SafeWritesTraceTest, TheFileIsFlushedBeforeItIsRenamedAndItsFolderAfter) {
    const auto lines = traced(GetParam().quick(output(), 0));
    const QByteArray folder = QFileInfo(directory.path()).canonicalFilePath().toUtf8();
    const QByteArray temporary = folder + "/" + GetParam().file.toUtf8() + ".reelsmith-partial-";
    const int fileFlushed = lineContaining(lines, "fsync(", -1);
    ASSERT_GE(fileFlushed, 0);
    EXPECT_TRUE(lines[fileFlushed].contains("<" + temporary)) << lines[fileFlushed].toStdString();
    const int renamed = lineContaining(lines, "renameat2(", fileFlushed);
    ASSERT_GT(renamed, fileFlushed);
    const int folderFlushed = lineContaining(lines, "fsync(", renamed);
    ASSERT_GT(folderFlushed, renamed);
    EXPECT_TRUE(lines[folderFlushed].contains("<" + folder + ">"))
        << lines[folderFlushed].toStdString();
}

// As on a network filesystem that can't rename without replacing: a new link never replaces.
TEST_P(SafeWritesTraceTest, WhereRenamingWithoutReplacingIsRefusedANewLinkPutsTheOutputInPlace) {
    const auto lines = traced(GetParam().quick(output(), 0), {"renameat2:error=EINVAL:when=1+"});
    expectOnlyExclusiveTemporaries(lines);
    EXPECT_EQ(countContaining(lines, "linkat("), 1);
    EXPECT_EQ(files(), QStringList{GetParam().file});
    EXPECT_GT(QFileInfo(output()).size(), 0);
}

// As on a filesystem without links either: the output is put in place after looking.
TEST_P(SafeWritesTraceTest, WhereLinksAreRefusedTooTheOutputIsRenamedAfterLooking) {
    const auto lines = traced(GetParam().quick(output(), 0),
                              {"renameat2:error=EINVAL:when=1+", "linkat:error=EPERM:when=1+"});
    expectOnlyExclusiveTemporaries(lines);
    EXPECT_EQ(countContaining(lines, "renameat("), 1);
    EXPECT_EQ(files(), QStringList{GetParam().file});
    EXPECT_GT(QFileInfo(output()).size(), 0);
}

INSTANTIATE_TEST_SUITE_P(Writers, SafeWritesTraceTest, testing::ValuesIn(outputWriters()),
                         [](const testing::TestParamInfo<OutputWriter>& info) {
                             return info.param.name;
                         });
