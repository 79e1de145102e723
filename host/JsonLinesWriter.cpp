#include "host/JsonLinesWriter.h"

JsonLinesWriter::JsonLinesWriter(std::FILE* stream, std::function<void()> closed)
    : stream(stream)
    , closed(std::move(closed)) {}

void JsonLinesWriter::write(const nlohmann::json& value) {
    // Text that is no valid UTF-8 is written with replacement characters rather than lost.
    std::string line = value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    line += '\n';
    std::lock_guard<std::mutex> lock(mutex);
    if (ended)
        return;
    if (std::fwrite(line.data(), 1, line.size(), stream) == line.size() && std::fflush(stream) == 0)
        return;
    ended = true;
    if (closed)
        closed();
}

bool JsonLinesWriter::isClosed() const {
    std::lock_guard<std::mutex> lock(mutex);
    return ended;
}

void JsonLinesWriter::close() {
    std::lock_guard<std::mutex> lock(mutex);
    ended = true;
}
