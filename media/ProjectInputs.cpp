#include "media/ProjectInputs.h"

#include "platform/project/EditReader.h"
#include "platform/projectrender/ProjectLoader.h"
#include "platform/projectrender/ProjectThumbnail.h"

#include <QFileInfo>

namespace EditorService {
namespace {

// Runs `work` on the file controller's thread, its result or failure handed to done once; done
// gets `cancelled` when the work is no longer wanted or the controller goes first.
template <class Result>
void submitOnce(Media::FileController& files, std::function<Result()> work,
                std::function<void(const Result&, std::exception_ptr)> done,
                std::function<bool()> wanted, std::function<std::exception_ptr()> cancelled) {
    auto cancel = [done, cancelled] { done({}, cancelled()); };
    files.submit(
        [work, done, wanted, cancel] {
            if (wanted && !wanted()) {
                cancel();
                return;
            }
            Result result;
            std::exception_ptr failure;
            try {
                result = work();
            } catch (...) {
                failure = std::current_exception();
            }
            done(result, std::move(failure));
        },
        cancel);
}

} // namespace

void parseInput(Media::FileController& files, const QString& path,
                Media::FileController::Parsed done, Media::FileController::Wanted wanted) {
    if (!Project::looksLikeProject(path)) {
        files.parse(path, std::move(done), std::move(wanted));
        return;
    }
    submitOnce<Velmor::AV::MediaInfo>(
        files,
        [path] {
            return Velmor::Render::describeProject(Velmor::Render::loadProject(path),
                                                   QFileInfo(path).size());
        },
        std::move(done), std::move(wanted),
        [path] {
            return std::make_exception_ptr(
                Media::ProbeCancelled("Probe cancelled: " + path.toStdString()));
        });
}

void projectThumbnail(Media::FileController& files, const Thumbnail::Request& request,
                      Thumbnail::Controller::Done done, Thumbnail::Controller::Wanted wanted) {
    const std::string output = request.output.toStdString();
    submitOnce<Thumbnail::Result>(
        files, [request] { return Velmor::Render::drawProjectThumbnail(request); }, std::move(done),
        std::move(wanted),
        [output] {
            return std::make_exception_ptr(
                Thumbnail::ThumbnailCancelled("Thumbnail cancelled: " + output));
        });
}

} // namespace EditorService
