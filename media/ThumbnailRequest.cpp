#include "media/ThumbnailRequest.h"

#include "platform/av/OutputFormats.h"
#include "service/api/Error.h"

namespace EditorService {

QCommandLineOption ThumbnailRequest::pathOption() {
    return mediaPathOption(QStringLiteral("The video file"));
}

QCommandLineOption ThumbnailRequest::outputOption() {
    return QCommandLineOption(QStringLiteral("output"),
                              QStringLiteral("The picture to write: PNG for .png, JPEG for "
                                             ".jpg or .jpeg. It appears only once complete."),
                              QStringLiteral("file.png"));
}

QCommandLineOption ThumbnailRequest::atOption() {
    return QCommandLineOption(QStringLiteral("at"),
                              QStringLiteral("Time of the frame in milliseconds from the start: "
                                             "the last frame shown at or before it."),
                              QStringLiteral("ms"), QStringLiteral("0"));
}

QString ThumbnailRequest::description() const {
    return QStringLiteral(
        "Write the frame on screen at a time of a video as a PNG or JPEG picture, "
        "fitted to a frame size, and emit {\"thumbnail\": {...}}.");
}

void ThumbnailRequest::validateOnLoad() const {
    requireMediaPath(path);
    if (output.isEmpty())
        throw Error("No output file specified, try --help for all available options");
    // A picture its name says it is not fails before anything is decoded.
    Velmor::AV::pictureFormatFor(output.toStdString());
    if (at < 0)
        throw Error(
            QStringLiteral("--at must not be negative, is %1").arg(at.milliseconds).toStdString());
    if (frameSize && !frameSize->isOriginal() && (frameSize->width < 1 || frameSize->height < 1)) {
        throw Error(QStringLiteral("Frame size must be at least 1:1, is %1:%2")
                        .arg(QString::number(frameSize->width), QString::number(frameSize->height))
                        .toStdString());
    }
    ExistingOutput::requireOneChoice(overwrite, skipExisting);
}

} // namespace EditorService
