#pragma once

#include <cstdio>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>

// Writes JSON values to a stream as JSON Lines: each value compact on its own line, written
// whole and flushed, from any number of threads at once. When the reader has gone (a closed
// pipe), further values are dropped and `closed` is called once, so the host can end quietly.
class JsonLinesWriter {
public:
    explicit JsonLinesWriter(std::FILE* stream, std::function<void()> closed = {});

    void write(const nlohmann::json& value);
    bool isClosed() const;
    // Ends the writing: values that come later are dropped, and `closed` is not called. A
    // command may still deliver from a thread of its own while the host shuts down.
    void close();

private:
    mutable std::mutex mutex;
    std::FILE* stream;
    std::function<void()> closed;
    bool ended = false;
};
