#include "platform/foundation/AppLocations.h"

#include "platform/foundation/CallLog.h"

#include <QStandardPaths>

namespace Velmor::Core {

AppLocations& AppLocations::GetLocations() {
    static AppLocations locations;
    return locations;
}

ioPath AppLocations::GetSettingsLocation() const {
    Velmor::Testing::CallLog::record("AppLocations::GetSettingsLocation");
    return ioPath(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation));
}

ioPath AppLocations::GetFontsLocation() const {
    Velmor::Testing::CallLog::record("AppLocations::GetFontsLocation");
    return ioPath(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation))
           / QStringLiteral("fonts");
}

} // namespace Velmor::Core
