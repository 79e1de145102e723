#include "media/ProbeRequest.h"

#include "service/api/Error.h"

namespace EditorService {

QCommandLineOption ProbeRequest::pathOption() {
    return QCommandLineOption(QStringLiteral("path"),
                              QStringLiteral("The media file; may stand first without the "
                                             "option's name."),
                              QStringLiteral("path"));
}

QString ProbeRequest::description() const {
    return QStringLiteral("Describe a media file: its container, duration, bit rate, size and "
                          "streams, as one value {\"probe\": {...}}.");
}

void ProbeRequest::validateOnLoad() const {
    if (path.isEmpty())
        throw Error("No media file specified, try --help for all available options");
}

} // namespace EditorService
