#include "platform/content/TransitionContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Transition {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("Transition::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Transition::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Transition::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    return {QStringLiteral("Dissolve"), QStringLiteral("Fade through black"),
            QStringLiteral("Wipe")};
}

} // namespace Transition
