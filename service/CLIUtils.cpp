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

// The command of a line's parts: the application path, then each part cleaned of surplus
// white space. The parts are the list's own, so each is cleaned in place.
QStringList withApplicationPath(QStringList parts) {
    QStringList command;
    command.reserve(parts.size() + 1);
    command.append(applicationPath());
    for (QString& part : parts)
        command.append(std::move(part).simplified());
    return command;
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
    // One source does a line's steps in their order. A chain of operators made and subscribed
    // for every line cost more than the string work itself; a throw still ends in on_error.
    return rxcpp::observable<>::create<QStringList>(
               [text = line.simplified()](const rxcpp::subscriber<QStringList>& subscriber) {
                   if (text.startsWith(QLatin1Char('#')) || text.length() == 0) {
                       subscriber.on_completed();
                       return;
                   }
                   // glog builds a message, time stamp and all, before it looks at the level.
                   LOG_IF(INFO, FLAGS_minloglevel <= google::GLOG_INFO)
                       << "Processing command: " << text.toStdString();
                   QStringList parts = text.split(QLatin1Char(';'), Qt::SkipEmptyParts);
                   if (!parts.isEmpty())
                       subscriber.on_next(withApplicationPath(std::move(parts)));
                   subscriber.on_completed();
               })
        .as_dynamic();
}

} // namespace CLIUtils
