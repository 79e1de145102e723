#include "platform/model/CollectionID.h"

namespace EditorCollection {

const QString CollectionID::PACKS = QStringLiteral("Packs");

} // namespace EditorCollection
