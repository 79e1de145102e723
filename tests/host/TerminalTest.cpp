#include "tests/host/HostProcess.h"
#include "tests/host/MediaTools.h"
#include "tests/support/MediaFixtures.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using EditorService::Testing::isLogLine;
using EditorService::Testing::mediaFixture;
using EditorService::Testing::OutputOn;
using EditorService::Testing::runHostOnATerminal;
using EditorService::Testing::TerminalRun;
using EditorService::Testing::writeFile;

namespace {

// What a person sees of the bytes a terminal received: the lines that scrolled by, and last
// the line the cursor stands on. A carriage return goes back to the start of the line, "\e[K"
// wipes from the cursor to the line's end, and a line feed ends the line.
QList<QByteArray> screenLines(const QByteArray& bytes) {
    QList<QByteArray> lines;
    QByteArray line;
    int column = 0;
    for (int i = 0; i < bytes.size(); ++i) {
        const char byte = bytes[i];
        if (byte == '\r') {
            column = 0;
        } else if (byte == '\n') {
            lines.append(line);
            line.clear();
            column = 0;
        } else if (bytes.mid(i, 3) == "\033[K") {
            line.truncate(column);
            i += 2;
        } else {
            if (column < line.size())
                line[column] = byte;
            else
                line.append(byte);
            ++column;
        }
    }
    lines.append(line);
    return lines;
}

bool isJsonValue(const QByteArray& line) {
    return nlohmann::json::accept(line.toStdString());
}

class TerminalTest : public testing::Test {
protected:
    QTemporaryDir directory;
};

} // namespace

TEST(TerminalScreenTest, ACarriageReturnAndAWipeLeaveOnlyWhatCameAfter) {
    EXPECT_EQ(screenLines("abc 1% left\033[K\r\033[K{}\r\n\rabc 2% left\033[K"),
              (QList<QByteArray>{"{}", "abc 2% left"}));
    EXPECT_EQ(screenLines("abc 1% left\033[K{}\n"), (QList<QByteArray>{"abc 1% left{}", ""}));
}

TEST_F(TerminalTest, JsonAndLogLinesOnTheProgressLinesTerminalStandOnLinesOfTheirOwn) {
    // While the export draws its line: its own progress values and a tick on stdout, and
    // after the tick a nested script's log line on stderr.
    const QString output = directory.filePath(QStringLiteral("out.mp4"));
    const QString later = writeFile(directory.filePath("later.reel"), "echo; later\n");
    const QString script =
        writeFile(directory.filePath("batch.reel"),
                  "export; " + QByteArray::fromStdString(mediaFixture("long.mp4"))
                      + "; --output=" + output.toUtf8()
                      + "\ntick; --count=1; --interval=1000\nscript; " + later.toUtf8() + "\n");
    const TerminalRun run = runHostOnATerminal({"script", script, "--jobs=2"}, OutputOn::Terminal);
    ASSERT_EQ(run.exitCode, 0) << run.terminal.toStdString();
    EXPECT_TRUE(run.terminal.contains(" fps ")) << "no progress line drawn";
    // A progress value printed while the line stood there has the line drawn again below it.
    EXPECT_TRUE(QString::fromUtf8(run.terminal)
                    .contains(QRegularExpression("\\}\\r?\\n\\r"
                                                 + QRegularExpression::escape(output) + " \\d+% ")))
        << run.terminal.toStdString();

    QList<QByteArray> lines = screenLines(run.terminal);
    EXPECT_EQ(lines.takeLast(), "") << "the line is wiped at the end";
    QList<QByteArray> logged;
    int values = 0;
    for (const QByteArray& line : lines) {
        ASSERT_TRUE(isJsonValue(line) || isLogLine(line)) << "glued: " << line.toStdString();
        if (isLogLine(line))
            logged.append(line.mid(line.indexOf("] ") + 2));
        else
            ++values;
    }
    EXPECT_TRUE(lines.contains("{\"tick\":1}"));
    EXPECT_TRUE(lines.contains("{\"echo\":[\"later\"]}"));
    EXPECT_EQ(logged.size(), 4) << values << " values";
    EXPECT_EQ(logged.last(), "Processing command: echo; later");
}
