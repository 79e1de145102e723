#include "host/services/ShardRequest.h"

#include "service/api/Error.h"
#include "service/requests/OptionDumper.h"

#include <QCommandLineParser>

using namespace EditorService;

QCommandLineOption ShardRequest::pathOption() {
    return QCommandLineOption(
        QStringLiteral("path"),
        QStringLiteral("Path to script file, if not given before the options."),
        QStringLiteral("path"));
}

QCommandLineOption ShardRequest::indexOption() {
    return QCommandLineOption(QStringLiteral("index"),
                              QStringLiteral("Which part to run, from 0 to N-1."),
                              QStringLiteral("K"), QStringLiteral("0"));
}

QCommandLineOption ShardRequest::countOption() {
    return QCommandLineOption(QStringLiteral("count"),
                              QStringLiteral("How many parts the script is split into."),
                              QStringLiteral("N"), QStringLiteral("1"));
}

QString ShardRequest::description() const {
    return QStringLiteral("Execute part K of N of the commands from script: those whose position "
                          "among its commands, the first being 0, is K modulo N.");
}

QString ShardRequest::additionalHelp() const {
    return QStringLiteral("Usage: reelsmith shard <path> --index=K --count=N [--jobs=J]\n"
                          "Comments and empty lines are no commands. The parts 0 to N-1 of one "
                          "script run each of its commands exactly once.\n");
}

void ShardRequest::validateOnLoad() const {
    if (path.isEmpty())
        throw Error("No script path specified");
    if (count < 1)
        throw Error("--count must be at least 1");
    if (index < 0 || index >= count)
        throw Error(
            QStringLiteral("--index must be between 0 and %1").arg(count - 1).toStdString());
}

std::unique_ptr<Request> ShardRequest::Serializer::loadFromCli(const QStringList& arguments) {
    // The parser needs the options to tell "--jobs 3 <path>" from "--flag <path>".
    const ShardRequest fields;
    CLI::OptionDumper dumper;
    dumper << fields;
    QCommandLineParser parser;
    parser.addOptions(dumper.options);
    parser.parse(arguments);
    const QStringList positional = parser.positionalArguments();
    QStringList withPath = arguments;
    // Behind the program name, where an option given last without its value can't take it.
    if (!positional.isEmpty())
        withPath.insert(1, QStringLiteral("--%1=%2").arg(pathOption().names().constFirst(),
                                                         positional.first()));
    auto loaded = DefaultRequestSerializer<ShardRequest>::loadFromCli(withPath);
    auto& shard = static_cast<ShardRequest&>(*loaded);
    if (!positional.isEmpty())
        shard.path = positional.first();
    shard.jobs = ScriptRequest::jobsFrom(arguments);
    return loaded;
}

QStringList ShardRequest::Serializer::toCli(const Request& request) const {
    // The parser that reads it back skips the first element as the program path.
    return QStringList(QStringLiteral("app-path-stub"))
           + DefaultRequestSerializer<ShardRequest>::toCli(request);
}
