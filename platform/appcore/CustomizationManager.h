#pragma once

#include "platform/appcore/ICustomizationManager.h"
#include "platform/foundation/ioPath.h"

#include <memory>

namespace Velmor::App {

// Reads the customization file once, at construction, as an INI file encoded in UTF-8:
//
//     [Customization]
//     ProductVersion=1.0.0            ; "major.minor[.patch[.build]]"
//     OrganizationName=Velmor
//     ProductName=ReelSmith
//     ApplicationName=ReelSmith Editor
//     ApplicationSettingsId=ReelSmith
//     ProductSettingsId=              ; empty: the product shares the application's store
//
// The values above are the defaults, used for every key the file lacks and for all of them
// when there is no file. A value holding a comma must be quoted ("Velmor, Inc.").
//
// An absolute path is read as it is. A relative one is looked for beside the executable
// (QCoreApplication::applicationDirPath()) first, then in the working directory; when
// neither holds it, the defaults stand. A file that is found but cannot be read, or whose
// product version is malformed, makes the constructor throw std::runtime_error.
class CustomizationManager : public ICustomizationManager {
public:
    explicit CustomizationManager(const Velmor::ioPath& path);
    ~CustomizationManager() override;

    Velmor::Core::Version GetProductVersion() const override;
    std::string GetOrganizationName() const override;
    std::string GetProductName() const override;
    std::string GetApplicationName() const override;
    std::string GetApplicationSettingsId() const override;
    std::string GetProductSettingsId() const override;

    // The file that was read; empty when the defaults stand.
    Velmor::ioPath GetFilePath() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::App
