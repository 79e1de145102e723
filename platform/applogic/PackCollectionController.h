#pragma once

#include <QStringList>
#include <memory>

namespace Package {
class IPackageHelper;
}

namespace EditorCollection {

// The collection of installed packs, as the package helper finds them.
class PackCollectionController {
public:
    explicit PackCollectionController(std::shared_ptr<Package::IPackageHelper> packageHelper);
    PackCollectionController(const PackCollectionController&) = delete;
    PackCollectionController& operator=(const PackCollectionController&) = delete;
    ~PackCollectionController();

    QStringList packs() const;
    const std::shared_ptr<Package::IPackageHelper>& packageHelper() const;

private:
    std::shared_ptr<Package::IPackageHelper> helper;
};

} // namespace EditorCollection
