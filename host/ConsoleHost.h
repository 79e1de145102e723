#pragma once

#include <memory>

// The console program: `reelsmith [options] <service> [service arguments]`.
//
// It makes the Qt core application, one CLILauncher, then the runtime provider from the
// process's arguments, and a loader with the host's services, each behind a time limit. It
// runs the named service and prints each of its JSON values compact on a line of stdout.
// Logs and errors go to stderr. Exit statuses are those of ExitStatus.h.
class ConsoleHost {
public:
    ConsoleHost(int& argc, char** argv);
    ~ConsoleHost();

    int exec();

private:
    class Private;
    std::unique_ptr<Private> d;
};
