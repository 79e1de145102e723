#include "host/TerminalLogSink.h"

#include "host/ProgressLine.h"
#include "tests/host/services/PseudoTerminal.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

using EditorService::Testing::PseudoTerminal;

namespace {

const nlohmann::json halfDone = {
    {"export", {{"output", "a.mp4"}, {"progress", 0.5}, {"frames", 120}, {"fps", 60.0}}}};

} // namespace

TEST(TerminalLogSinkTest, ALogLineStandsAboveTheProgressLineWhichIsDrawnAgainBelowIt) {
    PseudoTerminal pty;
    const auto line = std::make_shared<ProgressLine>(pty.terminal);
    {
        TerminalLogSink sink(line, pty.terminal);
        line->show(halfDone);
        LOG(INFO) << "Processing command: echo; a";
    }
    const QString received = QString::fromUtf8(pty.received());
    const QString drawn = QStringLiteral("\ra.mp4 50% 60 fps 2 s left\033[K");
    // glog's own format: severity, date, time, thread, file:line].
    const QRegularExpression expected(
        "^" + QRegularExpression::escape(drawn + "\r\033[K")
        + "I\\d{8} \\d\\d:\\d\\d:\\d\\d\\.\\d{6} +\\d+ TerminalLogSinkTest\\.cpp:\\d+\\] "
          "Processing command: echo; a\r\n"
        + QRegularExpression::escape(drawn) + "$");
    EXPECT_TRUE(expected.match(received).hasMatch()) << received.toStdString();
}

TEST(TerminalLogSinkTest, WhileItLivesGlogWritesNothingToStderrItself) {
    PseudoTerminal pty;
    const auto line = std::make_shared<ProgressLine>(pty.terminal);
    {
        TerminalLogSink sink(line, pty.terminal);
        testing::internal::CaptureStderr();
        LOG(WARNING) << "once, on the terminal";
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    }
    EXPECT_TRUE(pty.received().contains("] once, on the terminal\r\n"));
}

TEST(TerminalLogSinkTest, GlogWritesToStderrAgainOnceItIsGone) {
    const bool loggedToStderr = FLAGS_logtostderr;
    const int stderrThreshold = FLAGS_stderrthreshold;
    PseudoTerminal pty;
    { TerminalLogSink sink(std::make_shared<ProgressLine>(pty.terminal), pty.terminal); }
    EXPECT_EQ(FLAGS_logtostderr, loggedToStderr);
    EXPECT_EQ(FLAGS_stderrthreshold, stderrThreshold);
    testing::internal::CaptureStderr();
    LOG(WARNING) << "back on stderr";
    EXPECT_TRUE(QString::fromStdString(testing::internal::GetCapturedStderr())
                    .endsWith("] back on stderr\n"));
    EXPECT_FALSE(pty.received().contains("back on stderr"));
}
