#include "platform/package/PackageHelper.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/package/PackageDirectory.h"

namespace Package {
namespace {

class DirectoryPackageHelper : public IPackageHelper {
public:
    DirectoryPackageHelper() {
        Velmor::Testing::CallLog::record("Package::PackageHelper::PackageHelper");
    }
    ~DirectoryPackageHelper() override {
        Velmor::Testing::CallLog::record("Package::PackageHelper::~PackageHelper");
    }

    QStringList installedPackages() const override { return readPackages(packageDirectory()); }
};

} // namespace

std::shared_ptr<IPackageHelper> createPackageHelper() {
    Velmor::Testing::Probe::hit("Package::createPackageHelper");
    Velmor::Testing::CallLog::record("Package::createPackageHelper");
    return std::make_shared<DirectoryPackageHelper>();
}

} // namespace Package
