#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

namespace Package::Testing {

// Writes a file with the given content into the directory and returns its path.
inline QString writeFile(const QString& directory, const QString& name, const QByteArray& content) {
    const QString path = QDir(directory).filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write(content);
    return path;
}

} // namespace Package::Testing
