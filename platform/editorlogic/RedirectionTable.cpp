#include "platform/editorlogic/RedirectionTable.h"

namespace Resource {

void RedirectionTable::redirect(const QString& from, const QString& to) {
    m_entries.insert(from, to);
}

QString RedirectionTable::resolve(const QString& path) const {
    return m_entries.value(path, path);
}

int RedirectionTable::size() const {
    return m_entries.size();
}

} // namespace Resource
