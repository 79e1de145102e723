#pragma once

#include <QStringList>

namespace Velmor::App {
class ActionParser;
}

// The application object of an editor process. A subclass registers itself once it is ready
// and unregisters before it goes; instance() gives whichever launcher is registered.
class Launcher {
public:
    virtual ~Launcher();

    Launcher(const Launcher&) = delete;
    Launcher& operator=(const Launcher&) = delete;

    virtual void initializeOpengl();
    virtual void initializeStartActions();
    virtual void initializeActions();
    virtual void startCoreInitialization();
    virtual void waitForCoreInitialization();
    virtual bool isCoreInitialized() const;
    virtual Velmor::App::ActionParser* actionParser() const;
    // The arguments of the running QCoreApplication, program name first.
    virtual QStringList commandLineArguments() const;
    virtual void workerIsBusy(void* worker);
    virtual void workerIsIdle(void* worker);

    // The registered launcher, or null when there is none.
    static Launcher* instance();

protected:
    Launcher();

    // Makes the launcher the process-wide one. Throws std::invalid_argument for null and
    // std::logic_error when another launcher is registered already.
    static void registerInstance(Launcher* launcher);
    // Clears the process-wide launcher if it is this one; any other is left registered.
    static void unregisterInstance(Launcher* launcher);
};
