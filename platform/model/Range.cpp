#include "platform/model/Range.h"

namespace Types {

Range::Range()
    : m_start(0)
    , m_end(0)
    , m_valid(false) {}

Range::Range(MTime start, MTime end)
    : m_start(start)
    , m_end(end)
    , m_valid(true) {}

bool Range::operator==(const Range& other) const {
    return m_valid == other.m_valid && m_start == other.m_start && m_end == other.m_end;
}

bool Range::isValid() const {
    return m_valid;
}

MTime Range::start() const {
    return m_start;
}

MTime Range::end() const {
    return m_end;
}

} // namespace Types
