#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace Package {

// A package was installed; its manifest lies at manifestFile.
struct InstallFinishedNotification {
    QString manifestFile;
};

// Asks for the names of the loaded packages.
struct GetPackagesRequest {
    std::function<void(const QStringList& packages)> reply;
};

// Asks to load the packages again from their directory.
struct LoadPackagesRequest {};

// Asks to forget a package.
struct PackageRemoveRequest {
    QString packageName;
};

} // namespace Package
