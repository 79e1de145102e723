#include "media/JoinRequest.h"

#include "service/api/Error.h"

namespace EditorService {

QCommandLineOption JoinRequest::pathOption() {
    return QCommandLineOption(QStringLiteral("path"),
                              QStringLiteral("The folder of the parts, if not given before the "
                                             "options."),
                              QStringLiteral("folder"));
}

QCommandLineOption JoinRequest::outputOption() {
    return QCommandLineOption(QStringLiteral("output"),
                              QStringLiteral("The file to write. It appears only once complete."),
                              QStringLiteral("file"));
}

QString JoinRequest::description() const {
    return QStringLiteral("Join the parts that segment made in a folder into one file, copying "
                          "them: one value {\"export\": {..., \"done\": true}}.");
}

void JoinRequest::validateOnLoad() const {
    if (path.isEmpty())
        throw Error("No segment folder specified, try --help for all available options");
    if (output.isEmpty())
        throw Error("No output file specified, try --help for all available options");
    ExistingOutput::requireOneChoice(overwrite, skipExisting);
}

} // namespace EditorService
