#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <atomic>
#include <chrono>
#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace Bench {

// glog's own level setting (FLAGS_minloglevel), for as long as the object lives.
class MinimumLogLevel {
public:
    explicit MinimumLogLevel(int level);
    ~MinimumLogLevel();
    MinimumLogLevel(const MinimumLogLevel&) = delete;
    MinimumLogLevel& operator=(const MinimumLogLevel&) = delete;

private:
    int previous;
};

// Runs the main thread's event loop until `done` holds. A 1 ms timer wakes the loop, so a
// condition set on another thread is seen without a busy spin.
void spinUntil(const std::function<bool()>& done);
void spinFor(std::chrono::milliseconds duration);

// What a stream did, counted on whatever threads it delivered on.
struct Outcome {
    std::atomic<long> values{0};
    std::atomic<bool> ended{false};
    std::exception_ptr error;
};

// Subscribes, spins the event loop until the stream ends, and tells what it did.
void runToEnd(const rxcpp::observable<nlohmann::json>& values, Outcome& outcome);

// A text file in a directory of its own that goes when the object does.
class TextFile {
public:
    explicit TextFile(const QStringList& lines);
    QString path() const;

private:
    QTemporaryDir directory;
};

// A script of `lines` lines as people write them: comments (some indented), blank lines,
// blanks around ";", empty parts, commands of one part and of several.
QStringList mixedScriptLines(long lines);
// `count` times the same line.
QStringList repeatedLines(long count, const QString& line);

// The application path as the command sources prefix it.
QString applicationPath();

// Fields of /proc/self/status in bytes: "VmRSS", "VmHWM".
long statusBytes(const char* field);
// Lets VmHWM start again from the current resident size.
void resetPeakResident();

} // namespace Bench
