#pragma once

#include <cstdio>
#include <glog/logging.h>
#include <memory>

class ProgressLine;

// glog's lines on a terminal that shows the progress line: while the sink lives, glog writes
// nothing to stderr itself, and each of its lines goes to `terminal` (the progress line's)
// through the progress line, which steps aside for it. glog's own format stands.
class TerminalLogSink : public google::LogSink {
public:
    TerminalLogSink(std::shared_ptr<ProgressLine> progressLine, std::FILE* terminal);
    ~TerminalLogSink() override;

    void send(google::LogSeverity severity, const char* fullFilename, const char* baseFilename,
              int line, const google::LogMessageTime& time, const char* message,
              size_t length) override;

private:
    std::shared_ptr<ProgressLine> progressLine;
    std::FILE* terminal;
    bool loggedToStderr;
    int stderrThreshold;
};
