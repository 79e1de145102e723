#include "platform/foundation/ioPath.h"

#include <QDir>
#include <QFileInfo>

namespace Velmor {

ioPath::ioPath(const QString& path)
    : m_path(QDir::cleanPath(QDir::fromNativeSeparators(path))) {}

ioPath::ioPath(const char* path)
    : ioPath(QString::fromUtf8(path)) {}

bool ioPath::IsAbsolute() const {
    return !m_path.isEmpty() && QDir::isAbsolutePath(m_path);
}

QString ioPath::FileName() const {
    return QFileInfo(m_path).fileName();
}

ioPath ioPath::operator/(const QString& entry) const {
    if (m_path.isEmpty())
        return ioPath(entry);
    return ioPath(m_path + QLatin1Char('/') + entry);
}

} // namespace Velmor
