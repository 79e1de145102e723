#include "host/ProgressLine.h"

#include "tests/host/services/PseudoTerminal.h"

#include <QRegularExpression>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

using EditorService::Testing::PseudoTerminal;

namespace {

const nlohmann::json halfDone = {
    {"export", {{"output", "a.mp4"}, {"progress", 0.5}, {"frames", 120}, {"fps", 60.0}}}};
const QByteArray halfDoneLine = "\ra.mp4 50% 60 fps 2 s left\033[K";
const QByteArray wiped = "\r\033[K";

void printLine(std::FILE* stream, const char* text) {
    std::fputs(text, stream);
    std::fflush(stream);
}

} // namespace

TEST(ProgressLineTest, DescribesPercentageFramesPerSecondAndTimeLeftFromTheFramesSoFar) {
    // 120 frames at 60 fps are 2 s; half done leaves as much again.
    EXPECT_EQ(ProgressLine::describe(
                  {{"output", "a.mp4"}, {"progress", 0.5}, {"frames", 120}, {"fps", 60.0}}),
              "a.mp4 50% 60 fps 2 s left");
}

TEST(ProgressLineTest, RoundsThePercentageAndTheRate) {
    EXPECT_EQ(ProgressLine::describe(
                  {{"output", "b.mp4"}, {"progress", 0.126}, {"frames", 63}, {"fps", 29.6}}),
              "b.mp4 13% 30 fps 15 s left");
}

TEST(ProgressLineTest, ShowsDashesForTheTimeLeftBeforeAnyFrameOrRate) {
    EXPECT_EQ(ProgressLine::describe({{"output", "c.mp4"}, {"progress", 0.0}, {"frames", 0}}),
              "c.mp4 0% 0 fps -- left");
}

TEST(ProgressLineTest, WritesNothingOfItsOwnWhenTheStreamIsNotATerminal) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    ProgressLine line(file);
    line.show({{"export", {{"output", "a.mp4"}, {"progress", 0.5}, {"frames", 1}, {"fps", 1.0}}}});
    line.printAbove([file] { printLine(file, "x\n"); });
    line.close();
    std::fflush(file);
    EXPECT_EQ(std::ftell(file), 2);
    std::fclose(file);
}

TEST(ProgressLineTest, IsNoTerminalsCompanionWithoutATerminal) {
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(ProgressLine(file).sharesTerminal(file));
    std::fclose(file);
}

TEST(ProgressLineTest, DrawsEachProgressValueInPlaceAndWipesItAtTheExportsEnd) {
    PseudoTerminal pty;
    ProgressLine line(pty.terminal);
    line.show(halfDone);
    line.show({{"export", {{"output", "a.mp4"}, {"done", true}}}});
    EXPECT_EQ(pty.received(), halfDoneLine + wiped);
}

TEST(ProgressLineTest, WhatIsPrintedAboveStandsOnItsOwnLineAndTheLineIsDrawnAgainBelow) {
    PseudoTerminal pty;
    ProgressLine line(pty.terminal);
    line.show(halfDone);
    line.printAbove([&pty] { printLine(pty.terminal, "{\"tick\":1}\n"); });
    // The terminal turns a line feed into a carriage return and a line feed.
    EXPECT_EQ(pty.received(), halfDoneLine + wiped + "{\"tick\":1}\r\n" + halfDoneLine);
}

TEST(ProgressLineTest, WithNothingDrawnWhatIsPrintedAboveIsAllThatIsWritten) {
    PseudoTerminal pty;
    ProgressLine line(pty.terminal);
    line.printAbove([&pty] { printLine(pty.terminal, "x\n"); });
    EXPECT_EQ(pty.received(), "x\r\n");
}

TEST(ProgressLineTest, AfterCloseTheLineIsWipedAndDrawnNoMore) {
    PseudoTerminal pty;
    ProgressLine line(pty.terminal);
    line.show(halfDone);
    line.close();
    line.show(halfDone);
    line.printAbove([&pty] { printLine(pty.terminal, "x\n"); });
    EXPECT_EQ(pty.received(), halfDoneLine + wiped + "x\r\n");
}

TEST(ProgressLineTest, SharesItsTerminalWithAnotherStreamOnTheSameDeviceOnly) {
    PseudoTerminal pty;
    PseudoTerminal other;
    ProgressLine line(pty.terminal);
    EXPECT_TRUE(line.sharesTerminal(pty.terminal));
    std::FILE* second = ::fdopen(::dup(::fileno(pty.terminal)), "w");
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(line.sharesTerminal(second));
    std::fclose(second);
    EXPECT_FALSE(line.sharesTerminal(other.terminal));
    std::FILE* file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    EXPECT_FALSE(line.sharesTerminal(file));
    std::fclose(file);
}

TEST(ProgressLineTest, LinesPrintedAndDrawnFromManyThreadsNeverRunIntoEachOther) {
    PseudoTerminal pty;
    ProgressLine line(pty.terminal);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&line, &pty, thread] {
            const std::string output = "out" + std::to_string(thread) + ".mp4";
            for (int i = 0; i < 20; ++i) {
                line.show(
                    {{"export", {{"output", output}, {"progress", i / 20.0}, {"frames", i}}}});
                const std::string printed = "t" + std::to_string(thread) + "-" + std::to_string(i);
                line.printAbove(
                    [&pty, &printed] { printLine(pty.terminal, (printed + "\n").c_str()); });
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    line.close();
    // Nothing but whole drawings of the line and whole printed lines, one after the other.
    const QRegularExpression tokens(
        QStringLiteral("^(?:\\r[^\\r\\n]*\\x1b\\[K|t\\d-\\d+\\r\\n)*$"));
    const QString received = QString::fromUtf8(pty.received());
    EXPECT_TRUE(tokens.match(received).hasMatch()) << received.toStdString();
    // and a printed line never straight after a drawing that was not wiped.
    EXPECT_FALSE(received.contains(QRegularExpression(QStringLiteral("[^\\r]\\x1b\\[Kt"))))
        << received.toStdString();
    EXPECT_EQ(received.count(QStringLiteral("\r\n")), 80);
}
