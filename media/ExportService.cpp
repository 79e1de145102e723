#include "media/ExportService.h"

#include "media/ExportRegistry.h"
#include "media/ExportSession.h"
#include "media/ExportValues.h"
#include "media/RuntimeAccess.h"
#include "platform/editorlogic/FileController.h"
#include "platform/rxapp/RxApp.h"
#include "service/api/Error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <unistd.h>

namespace EditorService {
namespace {

using Json = nlohmann::json;

std::string text(const QString& string) {
    return string.toStdString();
}

// True when the export is to be skipped; throws when it may not go on.
bool checkOutput(const ExportRequest& request) {
    const QFileInfo output(request.output);
    if (output.exists() || output.isSymLink()) {
        if (request.skipExisting)
            return true;
        if (!request.overwrite)
            throw Error(text(QStringLiteral("Output file exists: %1").arg(request.output)));
    }
    const QString directory = output.absolutePath();
    const QByteArray native = QFile::encodeName(directory);
    int reason = 0;
    const QFileInfo place(directory);
    if (place.exists() && !place.isDir())
        reason = ENOTDIR;
    else if (::access(native.constData(), W_OK | X_OK) != 0)
        reason = errno;
    if (reason) {
        throw Error(text(QStringLiteral("Can not write to %1: %2")
                             .arg(QDir::toNativeSeparators(directory),
                                  QString::fromLocal8Bit(std::strerror(reason)))));
    }
    return false;
}

rxcpp::observable<Json> exportOne(const ExportRequest& request, const ExportRunFactory& exports,
                                  const std::optional<rxcpp::observe_on_one_worker>& waiting) {
    return rxcpp::observable<>::create<Json>(
               [request, exports, waiting](rxcpp::subscriber<Json> subscriber) {
                   try {
                       if (checkOutput(request)) {
                           subscriber.on_next(ExportValues::skipped(text(request.output)));
                           subscriber.on_completed();
                           return;
                       }
                       requireRuntime(GlobalContextProvider::Media);
                       auto* provider = GlobalContextProvider::instance();
                       auto* files = Media::FileController::instance();
                       if (!provider || !files)
                           throw std::logic_error("The media context has no file controller");
                       auto session = std::make_shared<ExportSession>(
                           request, exports, subscriber, ExportRegistry::of(*provider),
                           waiting ? *waiting : RxApp::instance()->mainThread());
                       session->begin(*files);
                   } catch (...) {
                       subscriber.on_error(std::current_exception());
                   }
               })
        .as_dynamic();
}

} // namespace

ExportService::ExportService()
    : ExportService(pipelineExports()) {}

ExportService::ExportService(ExportRunFactory exports)
    : exports(std::move(exports)) {}

ExportService::ExportService(ExportRunFactory exports, rxcpp::observe_on_one_worker waiting)
    : exports(std::move(exports))
    , waiting(std::move(waiting)) {}

void ExportService::cancelAll() {
    if (auto registry = ExportRegistry::find(GlobalContextProvider::instance()))
        registry->cancelAll();
}

QString ExportService::serviceId() {
    return QStringLiteral("export");
}

rxcpp::observable<nlohmann::json>
ExportService::run(const rxcpp::observable<ExportRequest>& requests) {
    const auto factory = exports;
    const auto ticks = waiting;
    return requests
        .flat_map([factory, ticks](const ExportRequest& request) {
            return exportOne(request, factory, ticks);
        })
        .as_dynamic();
}

} // namespace EditorService
