#pragma once

#include "service/contexts/AbstractContext.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>
#include <memory>

namespace EditorService {

// The media layer: decoder and stream processor factories, the task and file controllers, the
// source controller and the stream provider. The two controllers are its workers: their busy
// and idle signals come out of this context as becameBusy and becameIdle, each controller's
// address being its token.
class EDITORSERVICE_EXPORT MediaContext : public AbstractContext {
public:
    // arguments: the process's argument list; "cache-ttl" is the stream cache's lifetime.
    explicit MediaContext(const QStringList& arguments);
    ~MediaContext() override;

    static QList<QCommandLineOption> commandLineOptions();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace EditorService
