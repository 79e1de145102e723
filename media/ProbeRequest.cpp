#include "media/ProbeRequest.h"

namespace EditorService {

QCommandLineOption ProbeRequest::pathOption() {
    return mediaPathOption(QStringLiteral("The media file"));
}

QString ProbeRequest::description() const {
    return QStringLiteral("Describe a media file: its container, duration, bit rate, size and "
                          "streams, as one value {\"probe\": {...}}.");
}

void ProbeRequest::validateOnLoad() const {
    requireMediaPath(path);
}

} // namespace EditorService
