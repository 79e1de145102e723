#pragma once

#include "platform/foundation/ioPath.h"

namespace Velmor::Core {

// The process-wide well-known directories of the application. Each location follows the
// application's and organisation's names at the moment it is asked for, so it is meant to be
// read after the process has been given its identity. No directory is created.
class AppLocations {
public:
    static AppLocations& GetLocations();

    // Where the application keeps its settings: the per-user configuration directory of
    // this application (for example ~/.config/<organisation>/<application>).
    ioPath GetSettingsLocation() const;

    // Where the engine looks for the application's own fonts: "fonts" in the per-user data
    // directory of this application (for example
    // ~/.local/share/<organisation>/<application>/fonts).
    ioPath GetFontsLocation() const;

    AppLocations(const AppLocations&) = delete;
    AppLocations& operator=(const AppLocations&) = delete;

private:
    AppLocations() = default;
};

} // namespace Velmor::Core
