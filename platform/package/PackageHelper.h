#pragma once

#include "platform/package/IPackageHelper.h"

#include <memory>

namespace Package {

// A new helper for the packages of the package directory.
std::shared_ptr<IPackageHelper> createPackageHelper();

} // namespace Package
