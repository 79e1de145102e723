#include "media/SegmentRequest.h"

#include "service/api/Error.h"
#include "service/presets/PresetsHelp.h"

namespace EditorService {
namespace {

const QString audioPart = QStringLiteral("audio");

} // namespace

QCommandLineOption SegmentRequest::pathOption() {
    return mediaPathOption(QStringLiteral("The video file to export"));
}

QCommandLineOption SegmentRequest::indexOption() {
    return QCommandLineOption(QStringLiteral("index"),
                              QStringLiteral("Which part to render, from 0 to N-1, or audio for "
                                             "the whole export's sound."),
                              QStringLiteral("K"), QStringLiteral("0"));
}

QCommandLineOption SegmentRequest::countOption() {
    return QCommandLineOption(QStringLiteral("count"),
                              QStringLiteral("How many parts the export's video is split into."),
                              QStringLiteral("N"), QStringLiteral("1"));
}

QCommandLineOption SegmentRequest::outputOption() {
    return QCommandLineOption(QStringLiteral("output"),
                              QStringLiteral("The folder of the parts, made when missing. Each "
                                             "file appears only once complete."),
                              QStringLiteral("folder"));
}

QString SegmentRequest::description() const {
    return QStringLiteral("Render part K of N of an export's video, or its sound, into a folder "
                          "that join makes one file of: progress values while it runs, then one "
                          "value {\"segment\": {...}}.");
}

QString SegmentRequest::additionalHelp() const {
    return QStringLiteral("Usage: reelsmith segment <path> --index=K --count=N --output=<folder> "
                          "[preset options] [--range=<start>:<end>]\n"
                          "Parts last at least 2 s: a short export has fewer, and the others "
                          "have nothing to do.\n")
           + presetsHelp();
}

void SegmentRequest::validateOnLoad() const {
    requireMediaPath(path);
    if (output.isEmpty())
        throw Error("No output folder specified, try --help for all available options");
    if (count < 1)
        throw Error("--count must be at least 1");
    bool number = false;
    const int part = index.toInt(&number);
    if (!isAudio() && (!number || part < 0 || part >= count)) {
        throw Error(QStringLiteral("--index must be between 0 and %1 or audio")
                        .arg(count - 1)
                        .toStdString());
    }
    if (range.isValid() && range.end() <= range.start()) {
        throw Error(QStringLiteral("--range must end after it starts, is %1:%2")
                        .arg(range.start())
                        .arg(range.end())
                        .toStdString());
    }
    ExistingOutput::requireOneChoice(overwrite, skipExisting);
}

bool SegmentRequest::isAudio() const {
    return index == audioPart;
}

int SegmentRequest::videoIndex() const {
    return isAudio() ? 0 : index.toInt();
}

} // namespace EditorService
