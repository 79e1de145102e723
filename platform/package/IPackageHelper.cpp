#include "platform/package/IPackageHelper.h"

namespace Package {

IPackageHelper::~IPackageHelper() = default;

} // namespace Package
