#include "media/ExportRequest.h"

#include "service/api/Error.h"
#include "service/presets/PresetsHelp.h"

namespace EditorService {

QCommandLineOption ExportRequest::pathOption() {
    return mediaPathOption(QStringLiteral("The video file to export"));
}

QCommandLineOption ExportRequest::outputOption() {
    return QCommandLineOption(QStringLiteral("output"),
                              QStringLiteral("The file to write. It appears only once complete."),
                              QStringLiteral("file"));
}

QCommandLineOption ExportRequest::rangeOption() {
    return QCommandLineOption(QStringLiteral("range"),
                              QStringLiteral("Export only from <start> up to <end>, in "
                                             "milliseconds from the start of the input."),
                              QStringLiteral("start:end"));
}

QString ExportRequest::description() const {
    return QStringLiteral("Export a video file with a preset: progress values while it runs, "
                          "then one value {\"export\": {..., \"done\": true}}.");
}

QString ExportRequest::additionalHelp() const {
    return presetsHelp();
}

void ExportRequest::validateOnLoad() const {
    requireMediaPath(path);
    if (output.isEmpty())
        throw Error("No output file specified, try --help for all available options");
    if (range.isValid() && range.end() <= range.start()) {
        throw Error(QStringLiteral("--range must end after it starts, is %1:%2")
                        .arg(range.start())
                        .arg(range.end())
                        .toStdString());
    }
    ExistingOutput::requireOneChoice(overwrite, skipExisting);
}

} // namespace EditorService
