#include "media/ThumbnailService.h"

#include "media/CallbackStream.h"
#include "media/ExistingOutput.h"
#include "media/ProjectInputs.h"
#include "media/QueuedValue.h"
#include "media/RuntimeAccess.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/ThumbnailController.h"
#include "platform/project/EditReader.h"
#include "platform/rxapp/RxApp.h"

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
    task.overwrite = request.overwrite;
    return task;
}

nlohmann::json describe(const ThumbnailRequest& request, const Thumbnail::Result& result) {
    return {{"thumbnail",
             {{"path", request.path.toStdString()},
              {"output", request.output.toStdString()},
              {"at_ms", request.at.milliseconds},
              {"frame_ms", result.frameMilliseconds},
              {"width", result.width},
              {"height", result.height}}}};
}

// Media go first, so that a script of thumbnails of one file opens it once through the stream
// cache: a file is looked at as a project only when the media libraries can not take it. A
// project's frame is composed on the file controller's thread rather than taken from a stream.
Thumbnail::Controller::Done mediaOrProject(const ThumbnailRequest& request,
                                           Thumbnail::Controller::Done done,
                                           Thumbnail::Controller::Wanted wanted) {
    return [request, done, wanted](const Thumbnail::Result& result, std::exception_ptr error) {
        auto* files = Media::FileController::instance();
        if (!error || !files || !Project::looksLikeProject(request.path)) {
            done(result, error);
            return;
        }
        projectThumbnail(*files, toTask(request), done, wanted);
    };
}

// The thumbnails of the process waiting for the task controller's one-at-a-time thread.
const std::shared_ptr<WaitingLine>& waitingThumbnails() {
    static const auto* line = new std::shared_ptr<WaitingLine>(std::make_shared<WaitingLine>());
    return *line;
}

WaitingPlace placeOf(const ThumbnailRequest& request, rxcpp::observe_on_one_worker timer) {
    const std::string output = request.output.toStdString();
    return {waitingThumbnails(),
            [output](int ahead) { return queuedValue("thumbnail", "output", output, ahead); },
            std::move(timer)};
}

rxcpp::observable<nlohmann::json> thumbnail(const ThumbnailRequest& request,
                                            rxcpp::observe_on_one_worker timer) {
    auto taken = callbackStream<Thumbnail::Result>(
        [request](Thumbnail::Controller::Done done, Thumbnail::Controller::Wanted wanted) {
            requireRuntime(GlobalContextProvider::Render);
            auto* thumbnails = Thumbnail::Controller::instance();
            if (!thumbnails)
                throw std::logic_error("The render context has no thumbnail controller");
            thumbnails->extract(
                toTask(request),
                mediaOrProject(
                    request,
                    [done](const Thumbnail::Result& result, std::exception_ptr error) {
                        done(result, ExistingOutput::asCheckFailure(error));
                    },
                    wanted),
                wanted);
        },
        [request](const Thumbnail::Result& result) { return describe(request, result); },
        placeOf(request, std::move(timer)));
    return ExistingOutput::checkedFirst("thumbnail", request.output, request.overwrite,
                                        request.skipExisting, std::move(taken));
}

} // namespace

ThumbnailService::ThumbnailService() = default;

ThumbnailService::ThumbnailService(rxcpp::observe_on_one_worker waiting)
    : waiting(std::move(waiting)) {}

QString ThumbnailService::serviceId() {
    return QStringLiteral("thumbnail");
}

rxcpp::observable<nlohmann::json>
ThumbnailService::run(const rxcpp::observable<ThumbnailRequest>& requests) {
    const auto ticks = waiting;
    return requests
        .flat_map([ticks](const ThumbnailRequest& request) {
            return thumbnail(request, ticks ? *ticks : RxApp::instance()->mainThread());
        })
        .as_dynamic();
}

} // namespace EditorService
