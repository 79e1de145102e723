#include "host/TerminalLogSink.h"

#include "host/ProgressLine.h"

#include <cstdio>
#include <string>

TerminalLogSink::TerminalLogSink(std::shared_ptr<ProgressLine> progressLine, std::FILE* terminal)
    : progressLine(std::move(progressLine))
    , terminal(terminal)
    , loggedToStderr(FLAGS_logtostderr)
    , stderrThreshold(FLAGS_stderrthreshold) {
    // Off the direct way to stderr, glog would write log files instead: an empty name for each
    // severity writes none.
    for (int severity = 0; severity < google::NUM_SEVERITIES; ++severity)
        google::SetLogDestination(severity, "");
    FLAGS_stderrthreshold = google::NUM_SEVERITIES;
    FLAGS_logtostderr = false;
    google::AddLogSink(this);
}

TerminalLogSink::~TerminalLogSink() {
    google::RemoveLogSink(this);
    FLAGS_logtostderr = loggedToStderr;
    FLAGS_stderrthreshold = stderrThreshold;
}

void TerminalLogSink::send(google::LogSeverity severity, const char*, const char* baseFilename,
                           int line, const google::LogMessageTime& time, const char* message,
                           size_t length) {
    const std::string text = ToString(severity, baseFilename, line, time, message, length) + '\n';
    progressLine->printAbove([this, &text] {
        std::fwrite(text.data(), 1, text.size(), terminal);
        std::fflush(terminal);
    });
}
