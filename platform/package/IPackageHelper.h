#pragma once

#include <QStringList>

namespace Package {

// What the application logic needs to know of the installed packages.
class IPackageHelper {
public:
    IPackageHelper() = default;
    IPackageHelper(const IPackageHelper&) = delete;
    IPackageHelper& operator=(const IPackageHelper&) = delete;
    virtual ~IPackageHelper();

    // The names of the installed packages, read from the package directory now.
    virtual QStringList installedPackages() const = 0;
};

} // namespace Package
