#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace Package {

// The directory of the installed packages: the one set last, else "packages" beside the
// application. Setting an empty text goes back to that default.
QString packageDirectory();
void setPackageDirectory(const QString& directory);

// A manifest is a *.json file holding a JSON object. The package's name is the object's
// "name" when that is a non-empty string, else the file's base name. Empty for any other file.
std::optional<QString> readManifest(const QString& file);
// The names of the packages whose manifests lie in the directory, in file name order. A
// directory that doesn't exist has none.
QStringList readPackages(const QString& directory);

} // namespace Package
