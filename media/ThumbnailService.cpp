#include "media/ThumbnailService.h"

#include "media/CallbackStream.h"
#include "media/ProjectInputs.h"
#include "media/RuntimeAccess.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/ThumbnailController.h"
#include "platform/project/EditReader.h"

#include <stdexcept>

namespace EditorService {
namespace {

Thumbnail::Request toTask(const ThumbnailRequest& request) {
    Thumbnail::Request task;
    task.path = request.path;
    task.output = request.output;
    task.atMilliseconds = request.at;
    if (request.frameSize && !request.frameSize->isOriginal()) {
        task.width = request.frameSize->width;
        task.height = request.frameSize->height;
    }
    if (request.resizeFillMode)
        task.mode = *request.resizeFillMode;
    return task;
}

nlohmann::json describe(const ThumbnailRequest& request, const Thumbnail::Result& result) {
    return {{"thumbnail",
             {{"path", request.path.toStdString()},
              {"output", request.output.toStdString()},
              {"at_ms", request.at},
              {"frame_ms", result.frameMilliseconds},
              {"width", result.width},
              {"height", result.height}}}};
}

rxcpp::observable<nlohmann::json> thumbnail(const ThumbnailRequest& request) {
    return callbackStream<Thumbnail::Result>(
        [request](Thumbnail::Controller::Done done, Thumbnail::Controller::Wanted wanted) {
            if (Project::looksLikeProject(request.path)) {
                // A project's frame is composed, not taken from a decoded stream: it needs the
                // media runtime alone.
                requireRuntime(GlobalContextProvider::Media);
                auto* files = Media::FileController::instance();
                if (!files)
                    throw std::logic_error("The media context has no file controller");
                projectThumbnail(*files, toTask(request), std::move(done), std::move(wanted));
                return;
            }
            requireRuntime(GlobalContextProvider::Render);
            auto* thumbnails = Thumbnail::Controller::instance();
            if (!thumbnails)
                throw std::logic_error("The render context has no thumbnail controller");
            thumbnails->extract(toTask(request), std::move(done), std::move(wanted));
        },
        [request](const Thumbnail::Result& result) { return describe(request, result); });
}

} // namespace

QString ThumbnailService::serviceId() {
    return QStringLiteral("thumbnail");
}

rxcpp::observable<nlohmann::json>
ThumbnailService::run(const rxcpp::observable<ThumbnailRequest>& requests) {
    return requests.flat_map([](const ThumbnailRequest& request) { return thumbnail(request); })
        .as_dynamic();
}

} // namespace EditorService
