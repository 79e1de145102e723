#include "platform/content/AnimationContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Animation {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("Animation::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Animation::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Animation::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    return {QStringLiteral("Fly in"), QStringLiteral("Fade in"), QStringLiteral("Zoom in")};
}

} // namespace Animation
