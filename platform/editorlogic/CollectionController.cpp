#include "platform/editorlogic/CollectionController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <QStringList>

namespace EditorCollection {

Controller::Controller(const QSet<QString>& collectionIds)
    : ids(collectionIds) {
    Velmor::Testing::Probe::hit("EditorCollection::Controller::Controller");
    QStringList sortedIds = collectionIds.values();
    sortedIds.sort();
    Velmor::Testing::CallLog::record("EditorCollection::Controller::Controller("
                                     + sortedIds.join(QLatin1Char(',')).toStdString() + ")");
}

Controller::~Controller() {
    Velmor::Testing::CallLog::record("EditorCollection::Controller::~Controller");
}

const QSet<QString>& Controller::collectionIds() const {
    return ids;
}

} // namespace EditorCollection
