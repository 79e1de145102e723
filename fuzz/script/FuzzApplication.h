#pragma once

#include <QString>

namespace EditorService::Fuzzing {

// Makes, once per process, what the command input needs around it: a QCoreApplication on the
// calling thread, a CLILauncher, and glog set up so that the command log costs no output.
void startApplication();

// The application path that every command list starts with.
const QString& applicationPath();

// Processes the calling thread's events until done() holds.
void spinUntil(bool (*done)(void*), void* context);

} // namespace EditorService::Fuzzing
