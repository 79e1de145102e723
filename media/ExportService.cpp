#include "media/ExportService.h"

#include "media/ExistingOutput.h"
#include "media/ExportRegistry.h"
#include "media/ExportSession.h"
#include "media/ExportValues.h"
#include "media/RuntimeAccess.h"
#include "platform/editorlogic/FileController.h"
#include "platform/rxapp/RxApp.h"

#include <stdexcept>

namespace EditorService {
namespace {

using Json = nlohmann::json;

rxcpp::observable<Json> exportOne(const ExportRequest& request, const ExportRunFactory& exports,
                                  const std::optional<rxcpp::observe_on_one_worker>& waiting) {
    auto session = rxcpp::observable<>::create<Json>(
        [request, exports, waiting](rxcpp::subscriber<Json> subscriber) {
            try {
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
        });
    return ExistingOutput::checkedFirst("export", request.output, request.overwrite,
                                        request.skipExisting, session.as_dynamic());
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
