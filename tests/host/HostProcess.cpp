#include "tests/host/HostProcess.h"

#include <csignal>
#include <gtest/gtest.h>

namespace EditorService::Testing {

QList<QByteArray> HostRun::outputLines() const {
    QList<QByteArray> lines = output.split('\n');
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast();
    return lines;
}

HostRun runHost(const QStringList& arguments, const QString& workingDirectory) {
    QProcess process;
    if (!workingDirectory.isEmpty())
        process.setWorkingDirectory(workingDirectory);
    startHost(process, arguments);
    process.closeWriteChannel();
    // A host that hangs is killed and reads as no status at all, never as success.
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        HostRun hung;
        hung.output = process.readAllStandardOutput();
        hung.errors = process.readAllStandardError();
        return hung;
    }
    HostRun run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    return run;
}

void startHost(QProcess& process, const QStringList& arguments) {
    process.setProgram(QStringLiteral(REELSMITH_HOST));
    process.setArguments(arguments);
    process.start();
    process.waitForStarted();
}

HostRun signalHostWhen(const QStringList& arguments,
                       const std::function<bool(const QByteArray& output)>& ready, int signal) {
    QProcess process;
    startHost(process, arguments);
    QByteArray output;
    while (!ready(output) && process.state() == QProcess::Running) {
        process.waitForReadyRead(60000);
        output += process.readAllStandardOutput();
    }
    ::kill(pid_t(process.processId()), signal);
    EXPECT_TRUE(process.waitForFinished(60000));
    HostRun run;
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = output + process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    return run;
}

} // namespace EditorService::Testing
