#include "media/ProjectInputs.h"

#include "platform/project/EditReader.h"
#include "platform/projectrender/ProjectLoader.h"
#include "platform/projectrender/ProjectThumbnail.h"

#include <QFileInfo>

namespace EditorService {

void parseInput(Media::FileController& files, const QString& path, InputParsed done,
                Media::FileController::Wanted wanted) {
    if (!Project::looksLikeProject(path)) {
        files.parse(
            path,
            [done](const Velmor::AV::MediaInfo& info, std::exception_ptr error) {
                done(ParsedInput{info, nullptr}, std::move(error));
            },
            std::move(wanted));
        return;
    }
    files.submitOnce<ParsedInput>(
        [path] {
            auto project = std::make_shared<const Project::Edit>(Velmor::Render::loadProject(path));
            return ParsedInput{Velmor::Render::describeProject(*project, QFileInfo(path).size()),
                               project};
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
    files.submitOnce<Thumbnail::Result>(
        [request] { return Velmor::Render::drawProjectThumbnail(request); }, std::move(done),
        std::move(wanted),
        [output] {
            return std::make_exception_ptr(
                Thumbnail::ThumbnailCancelled("Thumbnail cancelled: " + output));
        });
}

} // namespace EditorService
