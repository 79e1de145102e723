#include "platform/editorlogic/CollectionController.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <QStringList>

namespace EditorCollection {

Controller::Controller(const QSet<QString>& collectionIds)
    : m_collectionIds(collectionIds) {
    Velmor::Testing::Probe::hit("EditorCollection::Controller::Controller");
    QStringList ids = collectionIds.values();
    ids.sort();
    Velmor::Testing::CallLog::record("EditorCollection::Controller::Controller("
                                     + ids.join(QLatin1Char(',')).toStdString() + ")");
}

Controller::~Controller() {
    Velmor::Testing::CallLog::record("EditorCollection::Controller::~Controller");
}

const QSet<QString>& Controller::collectionIds() const {
    return m_collectionIds;
}

} // namespace EditorCollection
