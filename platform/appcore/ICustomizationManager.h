#pragma once

#include "platform/foundation/Version.h"

#include <string>

namespace Velmor::App {

// The identity a customized build gives the application: its version, names and the ids
// of its settings stores.
class ICustomizationManager {
public:
    virtual ~ICustomizationManager();

    virtual Velmor::Core::Version GetProductVersion() const = 0;
    virtual std::string GetOrganizationName() const = 0;
    virtual std::string GetProductName() const = 0;
    virtual std::string GetApplicationName() const = 0;
    virtual std::string GetApplicationSettingsId() const = 0;
    // Empty when the product keeps no settings store of its own.
    virtual std::string GetProductSettingsId() const = 0;
};

} // namespace Velmor::App
