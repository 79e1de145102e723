#pragma once

#include <QString>

namespace Velmor {

// A file-system path in the engine's own form: native separators become '/', and redundant "."
// and ".." parts and doubled separators are removed. A relative path stays relative.
class ioPath {
public:
    ioPath() = default;
    explicit ioPath(const QString& path);
    explicit ioPath(const char* path);

    operator QString() const { return path; }
    const QString& ToQString() const { return path; }

    bool IsEmpty() const { return path.isEmpty(); }
    bool IsAbsolute() const;
    // The last part of the path: the file name without its directory.
    QString FileName() const;

    // The path of an entry inside this directory.
    ioPath operator/(const QString& entry) const;

    bool operator==(const ioPath& other) const { return path == other.path; }
    bool operator!=(const ioPath& other) const { return path != other.path; }

private:
    QString path;
};

} // namespace Velmor
