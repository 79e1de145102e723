#pragma once

#include <glog/logging.h>
#include <mutex>
#include <string>
#include <vector>

namespace EditorService::Testing {

// Collects the messages glog writes while it lives.
class LogCapture : public google::LogSink {
public:
    LogCapture() { google::AddLogSink(this); }
    ~LogCapture() override { google::RemoveLogSink(this); }

    void send(google::LogSeverity, const char*, const char*, int, const google::LogMessageTime&,
              const char* message, size_t length) override {
        std::lock_guard<std::mutex> lock(mutex);
        captured.emplace_back(message, length);
    }

    std::vector<std::string> messages() const {
        std::lock_guard<std::mutex> lock(mutex);
        return captured;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::string> captured;
};

} // namespace EditorService::Testing
