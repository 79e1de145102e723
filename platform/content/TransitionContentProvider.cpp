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
    QStringList names;
    for (const Effects::TransitionKind& kind : transitions())
        names.append(QString::fromStdString(kind.name));
    return names;
}

const std::vector<Effects::TransitionKind>& ContentProvider::transitions() const {
    return Effects::transitionKinds();
}

} // namespace Transition
