#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/host/OutputWriters.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QSysInfo>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/stat.h>

using EditorService::Testing::errorLinesBesidesTheLog;
using EditorService::Testing::HostRun;
using EditorService::Testing::OutputWriter;
using EditorService::Testing::outputWriters;
using EditorService::Testing::QuietHostSanitizer;
using EditorService::Testing::runHost;
using EditorService::Testing::runTool;
using EditorService::Testing::startHost;
using EditorService::Testing::temporariesIn;

namespace {

const QByteArray victimBytes = "the victim's own bytes, which no writer may touch";
const QByteArray oldBytes = "an old output, to be kept whole until a new one is complete";

QByteArray contents(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

// The host run with what stands before `exec "$@"` in a shell script: the shell's pid, "$$",
// is then the host's.
HostRun runThroughShell(const QString& script, const QStringList& arguments,
                        const QProcessEnvironment& environment) {
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start("sh",
                  QStringList{"-c", script + "; exec \"$@\"", "sh", REELSMITH_HOST} + arguments);
    process.closeWriteChannel();
    HostRun run;
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    return run;
}

// Whether ffmpeg reads the file to its end without a complaint.
bool decodesWhole(const QString& path) {
    const auto run = runTool("ffmpeg", {"-nostdin", "-v", "error", "-i", path, "-f", "null", "-"});
    return run.exitCode == 0 && run.errors.isEmpty();
}

class SafeWritesTest : public testing::TestWithParam<OutputWriter> {
protected:
    void SetUp() override { ASSERT_TRUE(directory.isValid()); }

    QString path(const QString& name) const { return directory.filePath(name); }
    QString output() const { return path(GetParam().file); }
    QStringList files() const {
        return QDir(directory.path()).entryList(QDir::Files | QDir::System, QDir::Name);
    }
    QString write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }
    QStringList quick(int variant, const QStringList& more = {}) const {
        return GetParam().quick(output(), variant) + more;
    }
    // What variant 0 and 1 write, each alone, to compare with what a race leaves.
    QList<QByteArray> eachAlone() const {
        QList<QByteArray> written;
        for (int variant : {0, 1}) {
            const QString alone = path(QStringLiteral("alone-%1-").arg(variant) + GetParam().file);
            EXPECT_EQ(runHost(GetParam().quick(alone, variant)).exitCode, 0);
            written.append(contents(alone));
            QFile::remove(alone);
        }
        EXPECT_NE(written[0], written[1]);
        return written;
    }
    // Starts the slow command, kills it with SIGKILL once its temporary exists, and returns
    // that temporary's name; empty when the command ended first.
    QString killedMidWrite(const QStringList& more = {}) {
        QProcess process;
        startHost(process, GetParam().slow(output()) + more);
        QStringList temporaries;
        while (temporaries.isEmpty() && process.state() == QProcess::Running) {
            temporaries = temporariesIn(directory.path());
            process.waitForFinished(1);
        }
        if (!temporaries.isEmpty())
            ::kill(pid_t(process.processId()), SIGKILL);
        EXPECT_TRUE(process.waitForFinished(60000));
        return temporaries.isEmpty() ? QString() : temporaries.front();
    }

    QuietHostSanitizer quietSanitizer;
    QTemporaryDir directory;
};

} // namespace

TEST_P(SafeWritesTest, ALinkAtTheOutputIsReplacedWithOverwriteAndItsTargetStaysUnchanged) {
    const QString victim = write("victim.txt", victimBytes);
    ASSERT_TRUE(QFile::link(victim, output()));
    const HostRun run = runHost(quick(0, {"--overwrite"}));
    ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_EQ(contents(victim), victimBytes);
    EXPECT_FALSE(QFileInfo(output()).isSymLink());
    EXPECT_TRUE(decodesWhole(output()));
}

TEST_P(SafeWritesTest, ALinkAtTheOutputIsAnExistingOutputWithoutOverwrite) {
    const QString victim = write("victim.txt", victimBytes);
    ASSERT_TRUE(QFile::link(victim, output()));
    const HostRun run = runHost(quick(0));
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors),
              QList<QByteArray>{"Output file exists: " + output().toUtf8()});
    EXPECT_EQ(contents(victim), victimBytes);
    EXPECT_TRUE(QFileInfo(output()).isSymLink());
}

// With randomness of zeros the writer's letters are always "AAAAAA": a link planted at that
// name, and at the name writers used before letters were part of it, leaves it no name to use.
TEST_P(SafeWritesTest, LinksAtEveryNameTheWriterCouldChooseLeaveTheirTargetUnchanged) {
    const QString victim = write("victim.txt", victimBytes);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("VICTIM", victim);
    environment.insert("PREFIX", output() + ".reelsmith-partial-");
    environment.insert("HOST", QSysInfo::machineHostName());
    environment.insert("PRELOAD", ZERO_RANDOMNESS);
    const HostRun run = runThroughShell(
        "ln -s \"$VICTIM\" \"$PREFIX$HOST-$$-AAAAAA\" && ln -s \"$VICTIM\" \"$PREFIX$$\" && "
        "export LD_PRELOAD=\"$PRELOAD\"",
        quick(0), environment);
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(errorLinesBesidesTheLog(run.errors),
              QList<QByteArray>{"Can not write " + output().toUtf8() + ": File exists"});
    EXPECT_EQ(contents(victim), victimBytes);
    EXPECT_FALSE(QFileInfo::exists(output()));
    EXPECT_EQ(files().size(), 3) << files().join(' ').toStdString();
}

TEST_P(SafeWritesTest, TheOutputHasTheModeTheUmaskLeaves) {
    for (const mode_t mask : {mode_t(027), mode_t(002)}) {
        const HostRun run =
            runThroughShell(QStringLiteral("umask %1").arg(mask, 3, 8, QChar('0')),
                            quick(0, {"--overwrite"}), QProcessEnvironment::systemEnvironment());
        ASSERT_EQ(run.exitCode, 0) << run.errors.toStdString();
        struct stat status {};
        ASSERT_EQ(::stat(QFile::encodeName(output()).constData(), &status), 0);
        EXPECT_EQ(status.st_mode & 0777, 0666 & ~mask) << std::oct << mask;
    }
}

TEST_P(SafeWritesTest, TwoProcessesReplacingOneOutputLeaveOneOfTheirOutputsWhole) {
    const QList<QByteArray> alone = eachAlone();
    QProcess first;
    QProcess second;
    startHost(first, quick(0, {"--overwrite"}));
    startHost(second, quick(1, {"--overwrite"}));
    ASSERT_TRUE(first.waitForFinished(120000));
    ASSERT_TRUE(second.waitForFinished(120000));
    EXPECT_EQ(first.exitCode(), 0) << first.readAllStandardError().toStdString();
    EXPECT_EQ(second.exitCode(), 0) << second.readAllStandardError().toStdString();
    EXPECT_TRUE(alone.contains(contents(output())));
    EXPECT_EQ(files(), QStringList{GetParam().file});
}

TEST_P(SafeWritesTest, OfTwoProcessesWritingOneNewOutputOneWinsWholeAndTheOtherFindsItExists) {
    const QList<QByteArray> alone = eachAlone();
    QProcess first;
    QProcess second;
    startHost(first, quick(0));
    startHost(second, quick(1));
    ASSERT_TRUE(first.waitForFinished(120000));
    ASSERT_TRUE(second.waitForFinished(120000));
    ASSERT_EQ(first.exitCode() + second.exitCode(), 1)
        << first.readAllStandardError().toStdString()
        << second.readAllStandardError().toStdString();
    QProcess& loser = first.exitCode() == 1 ? first : second;
    EXPECT_EQ(errorLinesBesidesTheLog(loser.readAllStandardError()),
              QList<QByteArray>{"Output file exists: " + output().toUtf8()});
    EXPECT_EQ(contents(output()), alone[first.exitCode() == 0 ? 0 : 1]);
    EXPECT_EQ(files(), QStringList{GetParam().file});
}

// The temporary it leaves is this host's, its process gone: the next write of the output
// removes it and says so.
TEST_P(SafeWritesTest, SigkillMidWriteLeavesTheOldOutputWholeAndTheNextRunRemovesTheTemporary) {
    write(GetParam().file, oldBytes);
    const QString temporary = killedMidWrite({"--overwrite"});
    if (temporary.isEmpty()) {
        EXPECT_TRUE(decodesWhole(output()));
        return;
    }
    EXPECT_EQ(contents(output()), oldBytes);
    EXPECT_EQ(files(), (QStringList{GetParam().file, temporary}));

    const HostRun next = runHost(quick(0, {"--overwrite"}));
    ASSERT_EQ(next.exitCode, 0) << next.errors.toStdString();
    const QString pid = temporary.section('-', -2, -2);
    EXPECT_TRUE(next.errors.contains("] Removed the stale temporary " + path(temporary).toUtf8()
                                     + ": process " + pid.toUtf8()
                                     + " of this host no longer runs\n"))
        << next.errors.toStdString();
    EXPECT_EQ(files(), QStringList{GetParam().file});
    EXPECT_TRUE(decodesWhole(output()));
}

TEST_P(SafeWritesTest, SigkillMidWriteOfANewOutputLeavesNoOutput) {
    const QString temporary = killedMidWrite();
    if (temporary.isEmpty()) {
        EXPECT_TRUE(decodesWhole(output()));
        return;
    }
    EXPECT_EQ(files(), QStringList{temporary});
}

INSTANTIATE_TEST_SUITE_P(Writers, SafeWritesTest, testing::ValuesIn(outputWriters()),
                         [](const testing::TestParamInfo<OutputWriter>& info) {
                             return info.param.name;
                         });
