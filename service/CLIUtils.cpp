#include "service/CLIUtils.h"

#include "platform/rxapp/RxApp.h"
#include "service/launcher/CLILauncher.h"

#include <QFile>
#include <QTextStream>
#include <glog/logging.h>
#include <stdexcept>

namespace CLIUtils {
namespace {

// The application path for a command, fetched anew each time. A path equal to the last one
// this thread fetched comes back as that same string, so that queued commands share one copy
// of it instead of holding one each.
QString applicationPath() {
    thread_local QString last;
    QString path = CLILauncher::instance()->commandLineArguments().first();
    if (path != last)
        last = std::move(path);
    return last;
}

rxcpp::observable<QStringList> commandsOf(const rxcpp::observable<QString>& lines) {
    return lines
        .flat_map([](const QString& line) { return parseCommand(line); }, rxcpp::util::take_at<1>(),
                  rxcpp::identity_current_thread())
        .observe_on(RxApp::instance()->mainThread())
        .as_dynamic();
}

} // namespace

rxcpp::observable<QStringList> openCommandScript(const QString& path) {
    return commandsOf(openFile(path));
}

rxcpp::observable<QStringList> openCommandPipe() {
    const auto error = std::make_exception_ptr(
        std::runtime_error("Input from stdin is not supported on this platform yet"));
    return commandsOf(rxcpp::observable<>::error<QString>(error));
}

rxcpp::observable<QString> openFile(const QString& path) {
    return rxcpp::observable<>::create<QString>([path](rxcpp::subscriber<QString> subscriber) {
               QFile file(path);
               file.open(QIODevice::ReadOnly | QIODevice::Text | QIODevice::Unbuffered);
               if (!file.isOpen()) {
                   subscriber.on_error(std::make_exception_ptr(std::runtime_error(
                       QStringLiteral("Can not open input device: %1").arg(path).toStdString())));
                   return;
               }
               QTextStream stream(&file);
               // The end is tested behind the read: an empty file delivers one empty line.
               do {
                   QString line = stream.readLine();
                   if (subscriber.is_subscribed())
                       subscriber.on_next(std::move(line));
               } while (!stream.atEnd() && subscriber.is_subscribed());
               if (subscriber.is_subscribed())
                   subscriber.on_completed();
           })
        .as_dynamic();
}

rxcpp::observable<QStringList> parseCommand(const QString& line) {
    return rxcpp::observable<>::just(line.simplified())
        .filter([](const QString& text) { return !text.startsWith(QLatin1Char('#')); })
        .filter([](const QString& text) { return text.length() != 0; })
        .map([](const QString& text) {
            // glog builds a message, time stamp and all, before it looks at the level.
            LOG_IF(INFO, FLAGS_minloglevel <= google::GLOG_INFO)
                << "Processing command: " << text.toStdString();
            QStringList parts =
                text.split(QStringLiteral(";"), Qt::SkipEmptyParts, Qt::CaseSensitive);
            for (QString& part : parts)
                part = part.simplified();
            return parts;
        })
        .filter([](const QStringList& parts) { return !parts.isEmpty(); })
        .map([](const QStringList& parts) {
            QStringList command(applicationPath());
            command += parts;
            return command;
        })
        .as_dynamic();
}

} // namespace CLIUtils
