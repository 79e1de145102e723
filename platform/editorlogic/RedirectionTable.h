#pragma once

#include <QHash>
#include <QString>

namespace Resource {

// Where resources that moved are found now: a path to path map.
class RedirectionTable {
public:
    void redirect(const QString& from, const QString& to);
    // The path a resource is found at: its redirection, or the path itself.
    QString resolve(const QString& path) const;
    int size() const;

private:
    QHash<QString, QString> entries;
};

} // namespace Resource
