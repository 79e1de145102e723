#include "tests/host/HostProcess.h"

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
    process.waitForFinished(120000);
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

} // namespace EditorService::Testing
