#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <functional>
#include <vector>

namespace EditorService::Testing {

// One finished run of the console host.
struct HostRun {
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;

    QList<QByteArray> outputLines() const;
};

// Runs the built host with the arguments, in the given working directory, and waits for it.
HostRun runHost(const QStringList& arguments, const QString& workingDirectory = {});

// One run of the host with stderr on a pseudo-terminal, and stdout either on the same terminal
// or on a pipe.
struct TerminalRun {
    int exitCode = -1;
    // stdout, when it was a pipe.
    QByteArray output;
    // Every byte the terminal received, as the terminal's line discipline passed them on.
    QByteArray terminal;
};

enum class OutputOn { Pipe, Terminal };

TerminalRun runHostOnATerminal(const QStringList& arguments, OutputOn output = OutputOn::Pipe);

// Writes a file for the host to read, such as a script, and gives its path back.
QString writeFile(const QString& path, const QByteArray& content);

// Starts the host and leaves it running, for tests that signal it or close its output.
void startHost(QProcess& process, const QStringList& arguments);

// Starts the host, reads its output until `ready` holds for what came so far (or the host has
// ended), sends it the signal and collects what it did; a host killed by a signal reads as -1.
HostRun signalHostWhen(const QStringList& arguments,
                       const std::function<bool(const QByteArray& output)>& ready, int signal);

#if defined(__SANITIZE_THREAD__)
#define HOST_UNDER_THREAD_SANITIZER 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define HOST_UNDER_THREAD_SANITIZER 1
#endif
#endif

// The host hands work between threads through Qt's event queue, whose locks ThreadSanitizer
// can't see in an uninstrumented Qt, so its reports from a sanitized host are about Qt's queue
// rather than the host; the library's own threads are checked in process by tests/stress.
class QuietHostSanitizer {
public:
    QuietHostSanitizer()
        : options(qgetenv("TSAN_OPTIONS")) {
#if defined(HOST_UNDER_THREAD_SANITIZER)
        qputenv("TSAN_OPTIONS", "report_bugs=0");
#endif
    }
    ~QuietHostSanitizer() {
        qputenv("TSAN_OPTIONS", options);
    }

private:
    QByteArray options;
};

} // namespace EditorService::Testing
