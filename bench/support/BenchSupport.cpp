#include "bench/support/BenchSupport.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTimer>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <glog/logging.h>
#include <stdexcept>

namespace Bench {

MinimumLogLevel::MinimumLogLevel(int level)
    : previous(FLAGS_minloglevel) {
    FLAGS_minloglevel = level;
}

MinimumLogLevel::~MinimumLogLevel() {
    FLAGS_minloglevel = previous;
}

void spinUntil(const std::function<bool()>& done) {
    QTimer ticker;
    ticker.start(1);
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void spinFor(std::chrono::milliseconds duration) {
    const auto deadline = std::chrono::steady_clock::now() + duration;
    spinUntil([deadline] { return std::chrono::steady_clock::now() >= deadline; });
}

void runToEnd(const rxcpp::observable<nlohmann::json>& values, Outcome& outcome) {
    values.subscribe([&outcome](const nlohmann::json&) { ++outcome.values; },
                     [&outcome](std::exception_ptr error) {
                         outcome.error = error;
                         outcome.ended = true;
                     },
                     [&outcome] { outcome.ended = true; });
    spinUntil([&outcome] { return outcome.ended.load(); });
}

TextFile::TextFile(const QStringList& lines) {
    QFile file(path());
    if (!file.open(QIODevice::WriteOnly))
        throw std::runtime_error("cannot write " + path().toStdString());
    const QByteArray text = (lines.join('\n') + '\n').toUtf8();
    file.write(text);
}

QString TextFile::path() const {
    return directory.filePath(QStringLiteral("script.reel"));
}

QStringList mixedScriptLines(long lines) {
    static const QStringList pattern{
        QStringLiteral("# section header"),
        QStringLiteral("echo; --text=hello   world; --flag"),
        QStringLiteral("   noop"),
        QStringLiteral("tick ;  --count=1 ;--interval=5"),
        QString(),
        QStringLiteral("\t# an indented comment"),
        QStringLiteral("echo;--text=a;b;;c"),
        QStringLiteral("render; --in=/media/clip 12.mov; --out=/tmp/out.mp4;  --range=0:10"),
        QStringLiteral("    "),
        QStringLiteral("noop;;"),
    };
    QStringList script;
    script.reserve(lines);
    for (long i = 0; i < lines; ++i)
        script.append(pattern.at(int(i % pattern.size())));
    return script;
}

QStringList repeatedLines(long count, const QString& line) {
    QStringList lines;
    lines.reserve(int(count));
    for (long i = 0; i < count; ++i)
        lines.append(line);
    return lines;
}

QString applicationPath() {
    return QCoreApplication::arguments().first();
}

long statusBytes(const char* field) {
    std::ifstream status("/proc/self/status");
    std::string line;
    const std::size_t length = std::strlen(field);
    while (std::getline(status, line)) {
        if (line.compare(0, length, field) == 0 && line.size() > length && line[length] == ':')
            return std::stol(line.substr(length + 1)) * 1024;
    }
    throw std::runtime_error(std::string("no ") + field + " in /proc/self/status");
}

void resetPeakResident() {
    std::ofstream clearRefs("/proc/self/clear_refs");
    clearRefs << "5";
}

} // namespace Bench
