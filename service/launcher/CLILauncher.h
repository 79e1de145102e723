#pragma once

#include "platform/editorutil/Launcher.h"
#include "service/api/EditorServiceExport.h"

#include <memory>

// The application object of a console process that runs the editor's services without a user
// interface. Its constructor gives the process its identity, builds the customization and
// settings stores, sets the translator's locale and registers the launcher; it starts no
// engine and no event loop. The host makes exactly one, after its QCoreApplication.
class CLILauncher : public Launcher {
public:
    CLILauncher();
    ~CLILauncher() override;

    // Always false: the launcher knows nothing of the engine, which others start.
    EDITORSERVICE_EXPORT bool isCoreInitialized() const override;
    // Always null: a process without a user interface has no actions.
    EDITORSERVICE_EXPORT Velmor::App::ActionParser* actionParser() const override;
    // QCoreApplication::arguments() unchanged, program name included.
    EDITORSERVICE_EXPORT QStringList commandLineArguments() const override;
    // Busy workers are not tracked here; any thread may call these.
    EDITORSERVICE_EXPORT void workerIsBusy(void* worker) override;
    EDITORSERVICE_EXPORT void workerIsIdle(void* worker) override;

    // The registered launcher if it is a CLILauncher; null when none is registered or the
    // registered one is another kind of launcher.
    EDITORSERVICE_EXPORT static CLILauncher* instance();

private:
    class Private;
    std::unique_ptr<Private> d;
};
