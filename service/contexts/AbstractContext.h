#pragma once

#include "service/api/EditorServiceExport.h"

#include <QObject>

namespace EditorService {

// What the runtime contexts have in common: a way to say that one of their workers has work
// in hand (becameBusy) or has finished it (becameIdle). The worker is told by its address, a
// token that no receiver dereferences. The base passes signals on and remembers nothing.
class EDITORSERVICE_EXPORT AbstractContext : public QObject {
    Q_OBJECT
public:
    AbstractContext();
    ~AbstractContext() override;

signals:
    void becameBusy(void* worker);
    void becameIdle(void* worker);
};

} // namespace EditorService
