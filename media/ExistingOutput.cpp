#include "media/ExistingOutput.h"

#include "platform/foundation/OutputExists.h"
#include "service/api/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <unistd.h>

namespace EditorService::ExistingOutput {
namespace {

using Json = nlohmann::json;

// The errno that keeps a command from writing into the folder; 0 when it may.
int folderProblem(const QString& folder) {
    const QFileInfo place(folder);
    if (place.exists() && !place.isDir())
        return ENOTDIR;
    if (::access(QFile::encodeName(folder).constData(), W_OK | X_OK) != 0)
        return errno;
    return 0;
}

} // namespace

QCommandLineOption overwriteOption() {
    return QCommandLineOption(QStringLiteral("overwrite"),
                              QStringLiteral("Replace the output file when it exists."));
}

QCommandLineOption skipExistingOption() {
    return QCommandLineOption(QStringLiteral("skip-existing"),
                              QStringLiteral("Do nothing when the output file exists, so that a "
                                             "batch run again resumes."));
}

void requireOneChoice(bool overwrite, bool skipExisting) {
    if (overwrite && skipExisting)
        throw Error("--overwrite and --skip-existing can not be given together");
}

bool isSkipped(const QString& output, bool overwrite, bool skipExisting) {
    const QFileInfo file(output);
    if (file.exists() || file.isSymLink()) {
        if (skipExisting)
            return true;
        if (!overwrite)
            throw Error(QStringLiteral("Output file exists: %1").arg(output).toStdString());
    }
    const QString folder = file.absolutePath();
    if (const int problem = folderProblem(folder)) {
        throw Error(QStringLiteral("Can not write to %1: %2")
                        .arg(QDir::toNativeSeparators(folder),
                             QString::fromLocal8Bit(std::strerror(problem)))
                        .toStdString());
    }
    return false;
}

Json skipped(const std::string& service, const std::string& output) {
    return {{service, {{"output", output}, {"skipped", true}}}};
}

rxcpp::observable<Json> checkedFirst(const std::string& service, const QString& output,
                                     bool overwrite, bool skipExisting,
                                     rxcpp::observable<Json> work) {
    return rxcpp::observable<>::create<Json>([service, output, overwrite, skipExisting,
                                              work](rxcpp::subscriber<Json> subscriber) {
               try {
                   if (isSkipped(output, overwrite, skipExisting)) {
                       subscriber.on_next(skipped(service, output.toStdString()));
                       subscriber.on_completed();
                       return;
                   }
               } catch (...) {
                   subscriber.on_error(std::current_exception());
                   return;
               }
               work.subscribe(subscriber);
           })
        .as_dynamic();
}

std::exception_ptr asCheckFailure(std::exception_ptr failure) {
    if (!failure)
        return failure;
    try {
        std::rethrow_exception(failure);
    } catch (const Velmor::OutputExists& exists) {
        return std::make_exception_ptr(Error(exists.what()));
    } catch (...) {
        return failure;
    }
}

} // namespace EditorService::ExistingOutput
