#include "tests/host/HostProcess.h"

#include <QFile>
#include <atomic>
#include <csignal>
#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <thread>
#include <unistd.h>

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

TerminalRun runHostOnATerminal(const QStringList& arguments, OutputOn output) {
    TerminalRun run;
    int master = -1;
    int slave = -1;
    if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) {
        ADD_FAILURE() << "openpty failed";
        return run;
    }
    const QString slaveName = QString::fromLocal8Bit(::ttyname(slave));
    // The terminal is read while the host runs, so that a full buffer never holds it up; once
    // the host has ended, what it wrote is all there to be read.
    std::atomic<bool> ended{false};
    std::thread reader([&] {
        char buffer[4096];
        for (;;) {
            pollfd readable{master, POLLIN, 0};
            const int ready = ::poll(&readable, 1, 100);
            if (ready == 0 && ended)
                break;
            if (ready <= 0)
                continue;
            const ssize_t read = ::read(master, buffer, sizeof buffer);
            if (read <= 0)
                break;
            run.terminal.append(buffer, int(read));
        }
    });
    QProcess process;
    process.setStandardErrorFile(slaveName);
    if (output == OutputOn::Terminal)
        process.setStandardOutputFile(slaveName);
    startHost(process, arguments);
    ::close(slave);
    process.closeWriteChannel();
    if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit)
        run.exitCode = process.exitCode();
    else
        process.kill();
    process.waitForFinished();
    if (output == OutputOn::Pipe)
        run.output = process.readAllStandardOutput();
    ended = true;
    reader.join();
    ::close(master);
    return run;
}

QString writeFile(const QString& path, const QByteArray& content) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(content);
    return path;
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
