#include "platform/foundation/ioPath.h"

#include <QDir>
#include <QFileInfo>

namespace Velmor {

ioPath::ioPath(const QString& path)
    : path(QDir::cleanPath(QDir::fromNativeSeparators(path))) {}

ioPath::ioPath(const char* path)
    : ioPath(QString::fromUtf8(path)) {}

bool ioPath::IsAbsolute() const {
    return !path.isEmpty() && QDir::isAbsolutePath(path);
}

QString ioPath::FileName() const {
    return QFileInfo(path).fileName();
}

ioPath ioPath::operator/(const QString& entry) const {
    if (path.isEmpty())
        return ioPath(entry);
    return ioPath(path + QLatin1Char('/') + entry);
}

} // namespace Velmor
