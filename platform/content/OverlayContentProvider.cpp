#include "platform/content/OverlayContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Overlay {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("Overlay::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Overlay::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Overlay::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    return {QStringLiteral("Title"), QStringLiteral("Lower third"), QStringLiteral("Frame")};
}

} // namespace Overlay
