#include "media/MediaPath.h"

#include "service/api/Error.h"

#include <QCommandLineParser>

namespace EditorService {

QStringList withPathOption(const QStringList& arguments, const QList<QCommandLineOption>& options,
                           const QCommandLineOption& pathOption) {
    // The parser warns on stderr about a list without even the program path; there is nothing
    // to read in it anyway.
    if (arguments.isEmpty())
        return arguments;
    QCommandLineParser parser;
    parser.addOptions(options);
    parser.addHelpOption();
    parser.parse(arguments);
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty() || parser.isSet(pathOption))
        return arguments;
    // The program path stays first; the positional argument itself is left as a stray one.
    return QStringList(arguments.mid(0, 1))
           << QStringLiteral("--%1=%2").arg(pathOption.names().first(), positional.first())
           << arguments.mid(1);
}

QCommandLineOption mediaPathOption(const QString& what) {
    return QCommandLineOption(
        QStringLiteral("path"),
        QStringLiteral("%1; may stand first without the option's name.").arg(what),
        QStringLiteral("path"));
}

void requireMediaPath(const QString& path) {
    if (path.isEmpty())
        throw Error("No media file specified, try --help for all available options");
}

} // namespace EditorService
