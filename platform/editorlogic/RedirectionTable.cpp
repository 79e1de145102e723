#include "platform/editorlogic/RedirectionTable.h"

namespace Resource {

void RedirectionTable::redirect(const QString& from, const QString& to) {
    entries.insert(from, to);
}

QString RedirectionTable::resolve(const QString& path) const {
    return entries.value(path, path);
}

int RedirectionTable::size() const {
    return entries.size();
}

} // namespace Resource
