#include "host/ConsoleHost.h"

#include "host/ExitStatus.h"
#include "host/HostServices.h"
#include "host/JsonLinesWriter.h"
#include "host/ProgressLine.h"
#include "host/SignalWatcher.h"
#include "host/TerminalLogSink.h"
#include "media/ExportService.h"
#include "platform/foundation/Temporaries.h"
#include "service/api/AbstractService.h"
#include "service/api/Error.h"
#include "service/api/HelpException.h"
#include "service/api/ServiceLoader.h"
#include "service/api/ServiceRunRequest.h"
#include "service/contexts/GlobalContextProvider.h"
#include "service/launcher/CLILauncher.h"
#include "service/services/TimeoutProxyService.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <condition_variable>
#include <csignal>
#include <cstdio>
#include <glog/logging.h>
#include <mutex>
#include <unistd.h>

using namespace EditorService;

namespace {

const QCommandLineOption& helpOption() {
    static const QCommandLineOption option(QStringList{"h", "help"},
                                           QStringLiteral("Displays help on commandline options."));
    return option;
}

const QCommandLineOption& versionOption() {
    static const QCommandLineOption option(QStringList{"v", "version"},
                                           QStringLiteral("Displays version information."));
    return option;
}

const QCommandLineOption& quietOption() {
    static const QCommandLineOption option(
        QStringList{"q", "quiet"},
        QStringLiteral("Show only errors on stderr: no log of commands and no warnings of the "
                       "media libraries."));
    return option;
}

QList<QCommandLineOption> hostOptions() {
    return QList<QCommandLineOption>{helpOption(), versionOption(), quietOption()}
           + GlobalContextProvider::options() + TimeoutProxyService::options();
}

void printError(const QString& text) {
    const QByteArray line = text.toLocal8Bit() + '\n';
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stderr);
    std::fflush(stderr);
}

} // namespace

class ConsoleHost::Private {
public:
    Private(int& argc, char** argv)
        : application(argc, argv)
        , provider(QCoreApplication::arguments())
        , loaders(makeHostLoaders([this](int seconds, const QString& commandLine) {
            reportTimeout(seconds, commandLine);
        }))
        , loader(loaders.front())
        , output(std::make_shared<JsonLinesWriter>(stdout, [this] { whenOutputClosed(); }))
        , progressLine(std::make_shared<ProgressLine>(stderr))
        , terminalLog(progressLine->sharesTerminal(stderr)
                          ? std::make_unique<TerminalLogSink>(progressLine, stderr)
                          : nullptr)
        , signalWatcher([this](int signal) {
            stop(signal == SIGINT ? ExitStatus::Interrupted : ExitStatus::Terminated);
        }) {}

    ~Private() { running.unsubscribe(); }

    int exec();

private:
    QString helpText(QCommandLineParser& parser) const;
    int runService(std::shared_ptr<AbstractService> service, const QStringList& arguments);
    void finish(int status, std::exception_ptr error = {});
    void stop(int status);
    void whenOutputClosed();
    void reportTimeout(int seconds, const QString& commandLine);

    QCoreApplication application;
    CLILauncher launcher;
    GlobalContextProvider provider;
    std::vector<std::shared_ptr<ServiceLoader>> loaders;
    std::shared_ptr<ServiceLoader> loader;
    // Shared with the stream: a command that runs under a job limit is not stopped with the
    // stream and may still be delivering a value while the host shuts down.
    std::shared_ptr<JsonLinesWriter> output;
    std::shared_ptr<ProgressLine> progressLine;
    // Only where the progress line is drawn: elsewhere glog writes to stderr itself.
    std::unique_ptr<TerminalLogSink> terminalLog;
    SignalWatcher signalWatcher;
    rxcpp::composite_subscription running;
    // Set while a thread that ended the stream tears it down; the main thread waits for it.
    std::mutex endingLock;
    std::condition_variable endingDone;
    bool ending = false;
    std::exception_ptr failure;
    int status = ExitStatus::Success;
    bool stopping = false;
};

QString ConsoleHost::Private::helpText(QCommandLineParser& parser) const {
    QString text = parser.helpText() + QStringLiteral("\nServices:\n");
    int width = 0;
    for (const QString& name : loader->serviceNames())
        width = std::max(width, int(name.size()));
    for (const QString& name : loader->serviceNames())
        text += QStringLiteral("  %1  %2\n").arg(name, -width).arg(loader->summary(name));
    return text
           + QStringLiteral(
               "\nRun \"reelsmith <service> --help\" for the options of one service.\n");
}

int ConsoleHost::Private::exec() {
    const QStringList arguments = QCoreApplication::arguments();
    const QList<QCommandLineOption> options = hostOptions();
    std::optional<ServiceRunRequest> command;
    QStringList hostArguments = arguments;
    try {
        command = ServiceRunRequest::fromCli(arguments, options);
        hostArguments = arguments.mid(0, arguments.size() - command->arguments.size());
    } catch (const Error&) {
    }

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Runs the editor's services without a window. Each value a service produces is one line "
        "of JSON on stdout; logs and errors go to stderr."));
    parser.addOptions(options);
    parser.addPositionalArgument(QStringLiteral("service"), QStringLiteral("The service to run."),
                                 QStringLiteral("<service> [service arguments]"));
    parser.parse(hostArguments);
    if (parser.isSet(helpOption())) {
        std::fputs(helpText(parser).toLocal8Bit().constData(), stdout);
        return ExitStatus::Success;
    }
    if (parser.isSet(versionOption())) {
        std::printf("reelsmith %s\n",
                    QCoreApplication::applicationVersion().toLocal8Bit().constData());
        return ExitStatus::Success;
    }
    if (!parser.unknownOptionNames().isEmpty()) {
        printError(QStringLiteral("Unknown option \"%1\", try \"reelsmith --help\"")
                       .arg(parser.unknownOptionNames().first()));
        return ExitStatus::Usage;
    }
    if (parser.isSet(quietOption()))
        FLAGS_minloglevel = google::GLOG_ERROR;
    if (!command) {
        printError(QStringLiteral("No service specified, try \"reelsmith --help\""));
        return ExitStatus::Usage;
    }
    std::shared_ptr<AbstractService> service;
    try {
        service = loader->createService(command->serviceName);
    } catch (const Error& unknown) {
        printError(QString::fromStdString(unknown.what()));
        return ExitStatus::Usage;
    }
    // A limit before the service name applies to the service, as one behind it does.
    const QCommandLineOption timeout = TimeoutProxyService::options().first();
    if (parser.isSet(timeout))
        command->arguments.append(QStringLiteral("--timeout=%1").arg(parser.value(timeout)));
    return runService(std::move(service), command->arguments);
}

int ConsoleHost::Private::runService(std::shared_ptr<AbstractService> service,
                                     const QStringList& arguments) {
    const auto values = service->run(arguments);
    service.reset();
    const bool outputOnTheLinesTerminal = progressLine->sharesTerminal(stdout);
    values.subscribe(
        running,
        [output = output, progressLine = progressLine,
         outputOnTheLinesTerminal](const nlohmann::json& value) {
            if (outputOnTheLinesTerminal)
                progressLine->printAbove([&] { output->write(value); });
            else
                output->write(value);
            progressLine->show(value);
        },
        [this](std::exception_ptr error) { finish(ExitStatus::Failure, error); },
        [this] { finish(ExitStatus::Success); });
    QCoreApplication::exec();
    running.unsubscribe();
    {
        std::unique_lock<std::mutex> lock(endingLock);
        endingDone.wait(lock, [this] { return !ending; });
    }
    output->close();
    provider.waitForWorkers();
    // The workers remove their temporary files as they end; whatever is left goes now.
    Velmor::Temporaries::removeAll();
    progressLine->close();
    if (!failure)
        return status;
    try {
        std::rethrow_exception(failure);
    } catch (const CLI::HelpException& help) {
        std::fputs(help.what(), stdout);
        return ExitStatus::Success;
    } catch (const std::exception& error) {
        printError(QString::fromUtf8(error.what()));
    } catch (...) {
        printError(QStringLiteral("Unknown failure"));
    }
    return ExitStatus::Failure;
}

// Called from whichever thread ends the stream; the event loop ends on the main thread.
void ConsoleHost::Private::finish(int exitStatus, std::exception_ptr error) {
    // The ending thread stops the other commands' threads here, and the main thread waits for
    // it: an unsubscribe there would return at once while this one is still under way, and the
    // host would be torn down under threads that still deliver.
    {
        std::lock_guard<std::mutex> lock(endingLock);
        ending = true;
    }
    running.unsubscribe();
    if (error)
        ExportService::cancelAll();
    {
        std::lock_guard<std::mutex> lock(endingLock);
        ending = false;
    }
    endingDone.notify_all();
    QMetaObject::invokeMethod(
        &application,
        [this, exitStatus, error] {
            if (status != ExitStatus::Success || failure)
                return;
            status = exitStatus;
            failure = error;
            QCoreApplication::exit(status);
        },
        Qt::QueuedConnection);
}

// The first reason to stop decides the status: signals that arrive together change nothing.
void ConsoleHost::Private::stop(int exitStatus) {
    if (stopping)
        return;
    stopping = true;
    running.unsubscribe();
    ExportService::cancelAll();
    status = exitStatus;
    QCoreApplication::exit(status);
}

void ConsoleHost::Private::whenOutputClosed() {
    QMetaObject::invokeMethod(
        &application, [this] { stop(ExitStatus::OutputClosed); }, Qt::QueuedConnection);
}

// Runs on the timer's thread and ends the process there, whatever the main thread is doing.
void ConsoleHost::Private::reportTimeout(int seconds, const QString& commandLine) {
    Velmor::Temporaries::removeAll();
    progressLine->close();
    std::fflush(stdout);
    std::fprintf(stderr, "Command timed out after %d s: %s\n", seconds,
                 commandLine.toLocal8Bit().constData());
    std::fflush(stderr);
    std::_Exit(ExitStatus::TimedOut);
}

ConsoleHost::ConsoleHost(int& argc, char** argv)
    : d(std::make_unique<Private>(argc, argv)) {}

ConsoleHost::~ConsoleHost() = default;

int ConsoleHost::exec() {
    return d->exec();
}
