#include "host/JsonLinesWriter.h"

JsonLinesWriter::JsonLinesWriter(std::FILE* stream, std::function<void()> closed)
    : m_stream(stream)
    , m_closed(std::move(closed)) {}

void JsonLinesWriter::write(const nlohmann::json& value) {
    // Text that is no valid UTF-8 is written with replacement characters rather than lost.
    std::string line = value.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    line += '\n';
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_isClosed)
        return;
    if (std::fwrite(line.data(), 1, line.size(), m_stream) == line.size()
        && std::fflush(m_stream) == 0)
        return;
    m_isClosed = true;
    if (m_closed)
        m_closed();
}

bool JsonLinesWriter::isClosed() const {
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_isClosed;
}

void JsonLinesWriter::close() {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_isClosed = true;
}
