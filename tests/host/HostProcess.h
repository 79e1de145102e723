#pragma once

#include <QByteArray>
#include <QProcess>
#include <QStringList>
#include <vector>

namespace EditorService::Testing {

// One finished run of the console host.
struct HostRun {
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;

    QList<QByteArray> outputLines() const;
};

// Runs the built host with the arguments, in the given working directory, and waits for it.
HostRun runHost(const QStringList& arguments, const QString& workingDirectory = {});

// Starts the host and leaves it running, for tests that signal it or close its output.
void startHost(QProcess& process, const QStringList& arguments);

} // namespace EditorService::Testing
