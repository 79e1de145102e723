#include "tests/host/MediaTools.h"

#include <QProcess>
#include <QRegularExpression>
#include <cmath>
#include <limits>

namespace EditorService::Testing {

ToolRun runTool(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    ToolRun run;
    run.started = process.waitForStarted(60000);
    if (!run.started)
        return run;
    process.closeWriteChannel();
    process.waitForFinished(120000);
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.output = process.readAllStandardOutput();
    run.errors = process.readAllStandardError();
    return run;
}

QByteArray rgbPixels(const QString& picture) {
    const ToolRun run =
        runTool(QStringLiteral("ffmpeg"), {"-nostdin", "-v", "error", "-i", picture, "-f",
                                           "rawvideo", "-pix_fmt", "rgb24", "-"});
    return run.exitCode == 0 ? run.output : QByteArray();
}

double psnr(const QByteArray& a, const QByteArray& b) {
    if (a.size() != b.size() || a.isEmpty())
        return -1;
    double squares = 0;
    for (int i = 0; i < a.size(); ++i) {
        const int difference = int(quint8(a[i])) - int(quint8(b[i]));
        squares += double(difference) * difference;
    }
    if (squares == 0)
        return std::numeric_limits<double>::infinity();
    return 10 * std::log10(255.0 * 255.0 / (squares / a.size()));
}

bool isLogLine(const QByteArray& line) {
    // glog's prefix: severity, date, time, thread, file:line].
    static const QRegularExpression logLine(
        QStringLiteral("^[IWEF]\\d{8} \\d\\d:\\d\\d:\\d\\d\\.\\d+ +\\d+ [^ ]+:\\d+\\] "));
    return logLine.match(QString::fromUtf8(line)).hasMatch();
}

QList<QByteArray> errorLinesBesidesTheLog(const QByteArray& errors) {
    QList<QByteArray> lines;
    for (const QByteArray& line : errors.split('\n')) {
        if (!line.isEmpty() && !isLogLine(line))
            lines.append(line);
    }
    return lines;
}

} // namespace EditorService::Testing
