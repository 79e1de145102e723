#pragma once

#include <QString>

namespace EditorCollection {

// The ids of the editor's built-in collections.
struct CollectionID {
    // The collection of installed packs.
    static const QString PACKS;
};

} // namespace EditorCollection
