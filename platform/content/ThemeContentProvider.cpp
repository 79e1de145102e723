#include "platform/content/ThemeContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Theme {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("Theme::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Theme::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Theme::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    return {QStringLiteral("Classic"), QStringLiteral("Travel"), QStringLiteral("Celebration")};
}

} // namespace Theme
