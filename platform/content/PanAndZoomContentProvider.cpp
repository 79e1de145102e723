#include "platform/content/PanAndZoomContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace PanAndZoom {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("PanAndZoom::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("PanAndZoom::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("PanAndZoom::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    return {QStringLiteral("Zoom in centre"), QStringLiteral("Zoom out centre"),
            QStringLiteral("Pan left to right")};
}

} // namespace PanAndZoom
