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

    operator QString() const { return m_path; }
    const QString& ToQString() const { return m_path; }

    bool IsEmpty() const { return m_path.isEmpty(); }
    bool IsAbsolute() const;
    // The last part of the path: the file name without its directory.
    QString FileName() const;

    // The path of an entry inside this directory.
    ioPath operator/(const QString& entry) const;

    bool operator==(const ioPath& other) const { return m_path == other.m_path; }
    bool operator!=(const ioPath& other) const { return m_path != other.m_path; }

private:
    QString m_path;
};

} // namespace Velmor
