#pragma once

#include <QSet>
#include <QString>

namespace EditorCollection {

// Keeps the editor's collections, one for each id it was given.
class Controller {
public:
    // Records "EditorCollection::Controller::Controller(<ids>)", the ids sorted and joined
    // by ",".
    explicit Controller(const QSet<QString>& collectionIds);
    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;
    ~Controller();

    const QSet<QString>& collectionIds() const;

private:
    QSet<QString> ids;
};

} // namespace EditorCollection
