#include "tests/host/HostProcess.h"
#include "tests/support/MediaFixtures.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTextStream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using EditorService::Testing::mediaFixture;
using EditorService::Testing::writeFile;

namespace {

// One command of a "sh" block in the README's "Running services" section, with the exit status
// the README gives it: the one its comment names ("exit status 124"), 0 when it names none.
struct ReadmeCommand {
    int line = 0;
    QString command;
    int status = 0;
};

// Where a line's comment starts: the first "#" outside quotes that begins a word; -1 for none.
int commentStart(const QString& line) {
    QChar quote;
    for (int i = 0; i < line.size(); ++i) {
        const QChar c = line[i];
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '#' && (i == 0 || line[i - 1].isSpace())) {
            return i;
        }
    }
    return -1;
}

int statusOf(const QString& command) {
    static const QRegularExpression named(QStringLiteral("\\bexit status (\\d+)\\b"));
    const int comment = commentStart(command);
    if (comment < 0)
        return 0;
    const auto match = named.match(command.mid(comment));
    return match.hasMatch() ? match.captured(1).toInt() : 0;
}

std::vector<ReadmeCommand> readmeCommands() {
    QFile file(QStringLiteral(README_PATH));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    const QStringList lines = QTextStream(&file).readAll().split('\n');
    std::vector<ReadmeCommand> commands;
    bool inSection = false;
    bool inBlock = false;
    bool runs = false;
    ReadmeCommand pending;
    for (int i = 0; i < lines.size(); ++i) {
        const QString& line = lines[i];
        if (!inBlock && line.startsWith(QStringLiteral("## ")))
            inSection = line == QStringLiteral("## Running services");
        if (!inSection)
            continue;
        if (line.startsWith(QStringLiteral("```"))) {
            runs = !inBlock && line.mid(3).trimmed() == QStringLiteral("sh");
            inBlock = !inBlock;
            continue;
        }
        if (!inBlock || !runs)
            continue;
        if (pending.command.isEmpty()) {
            if (line.trimmed().isEmpty() || line.trimmed().startsWith('#'))
                continue;
            pending.line = i + 1;
        }
        // A line that ends in a backslash goes on in the next one.
        if (line.endsWith('\\')) {
            pending.command += line.chopped(1);
            continue;
        }
        pending.command += line;
        pending.status = statusOf(pending.command);
        commands.push_back(pending);
        pending = ReadmeCommand();
    }
    return commands;
}

void copyFile(const QString& from, const QString& to) {
    QDir().mkpath(QFileInfo(to).path());
    EXPECT_TRUE(QFile::copy(from, to)) << from.toStdString() << " to " << to.toStdString();
}

// The folder a command runs in: the sample clip as clip.mp4, the examples' scripts under
// examples/, batch.reel with two exports of the clip, and for any other media file or script
// the command names and the folder lacks, the clip or a script of one echo.
void fillSampleFolder(const QDir& folder, const QString& command) {
    const QString clip = QString::fromStdString(mediaFixture("h264_aac.mp4"));
    copyFile(clip, folder.filePath(QStringLiteral("clip.mp4")));
    const QDir examples(QStringLiteral(EXAMPLES_DIR));
    for (const QString& script : examples.entryList({QStringLiteral("*.reel")}, QDir::Files))
        copyFile(examples.filePath(script), folder.filePath("examples/" + script));
    writeFile(folder.filePath(QStringLiteral("batch.reel")),
              "export; clip.mp4; --output=clip-720p.mp4; --preset=720p; --skip-existing\n"
              "export; clip.mp4; --output=clip-360p.mp4; --preset=360p; --skip-existing\n");
    static const QRegularExpression mediaFile(QStringLiteral("\\.(mp4|mov|mkv|webm|wav)$"));
    for (QString word : command.left(commentStart(command)).split(' ', Qt::SkipEmptyParts)) {
        word.remove('"').remove('\'');
        if (word.startsWith('-') || word.contains('=') || folder.exists(word))
            continue;
        if (mediaFile.match(word).hasMatch())
            copyFile(clip, folder.filePath(word));
        else if (word.endsWith(QStringLiteral(".reel")))
            writeFile(folder.filePath(word), "echo; " + word.toUtf8() + "\n");
    }
}

struct ShellRun {
    int status = -1;
    QByteArray output;
    QByteArray errors;
};

// Runs the command through sh in the folder, with the built reelsmith first on the PATH.
ShellRun runInShell(const QString& command, const QString& folder) {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PATH"), QFileInfo(QStringLiteral(REELSMITH_HOST)).path()
                                                   + ':'
                                                   + environment.value(QStringLiteral("PATH")));
    QProcess shell;
    shell.setProcessEnvironment(environment);
    shell.setWorkingDirectory(folder);
    shell.start(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), command});
    shell.closeWriteChannel();
    ShellRun run;
    if (!shell.waitForFinished(120000)) {
        shell.kill();
        shell.waitForFinished();
    } else if (shell.exitStatus() == QProcess::NormalExit) {
        run.status = shell.exitCode();
    }
    run.output = shell.readAllStandardOutput();
    run.errors = shell.readAllStandardError();
    return run;
}

// Names the README's line in the test's listing.
void PrintTo(const ReadmeCommand& command, std::ostream* stream) {
    *stream << "README.md:" << command.line << ": " << command.command.toStdString();
}

class ReadmeCommandTest : public testing::TestWithParam<ReadmeCommand> {};

} // namespace

TEST(ReadmeCommandsTest, TheRunningServicesSectionHoldsCommands) {
    EXPECT_GE(readmeCommands().size(), 10u)
        << "no \"sh\" blocks found under \"## Running services\" in " << README_PATH;
}

TEST(ReadmeCommandsTest, AStatusIsReadFromTheCommandsCommentOnly) {
    EXPECT_EQ(statusOf(QStringLiteral("reelsmith tick --timeout=1   # ends, exit status 124")),
              124);
    EXPECT_EQ(statusOf(QStringLiteral("reelsmith echo \"exit status 3\"   # prints it")), 0);
    EXPECT_EQ(statusOf(QStringLiteral("reelsmith echo a#b")), 0);
}

TEST_P(ReadmeCommandTest, ExitsWithTheStatusTheReadmeGives) {
    const ReadmeCommand& command = GetParam();
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    fillSampleFolder(QDir(folder.path()), command.command);
    const ShellRun run = runInShell(command.command, folder.path());
    EXPECT_EQ(run.status, command.status)
        << "README.md:" << command.line << ": " << command.command.toStdString() << "\nexited with "
        << run.status << ", the README gives " << command.status << "\nstdout:\n"
        << run.output.left(2000).toStdString() << "\nstderr:\n"
        << run.errors.left(2000).toStdString();
}

INSTANTIATE_TEST_SUITE_P(RunningServices, ReadmeCommandTest, testing::ValuesIn(readmeCommands()),
                         [](const testing::TestParamInfo<ReadmeCommand>& info) {
                             return "Line" + std::to_string(info.param.line);
                         });
