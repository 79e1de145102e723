#pragma once

#include "service/contexts/AbstractContext.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>

namespace EditorService {

// The media engine of the process: the core with its plug-ins, OpenGL and the fonts. The
// constructor returns once the engine is up; the destructor shuts down OpenGL, then the core.
class EDITORSERVICE_EXPORT EngineContext : public AbstractContext {
public:
    // arguments: the process's argument list; "disable-plugin" names plug-ins not to load.
    explicit EngineContext(const QStringList& arguments);
    ~EngineContext() noexcept override;

    static QList<QCommandLineOption> commandLineOptions();
};

} // namespace EditorService
