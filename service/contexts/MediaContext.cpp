#include "service/contexts/MediaContext.h"

#include "platform/editorlogic/ExecutorFactory.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/SourceController.h"
#include "platform/editorlogic/StreamProcessorFactory.h"
#include "platform/editorlogic/StreamProvider.h"
#include "platform/editorlogic/Synchronizer.h"
#include "platform/editorlogic/TaskController.h"

#include <QCommandLineParser>

namespace EditorService {

class MediaContext::Private {
public:
    Private(MediaContext* context, int cacheLifetime);

    Connection::Synchronizer synchronizer;
    Core::ExecutorFactory executorFactory;
    Core::StreamProcessorFactory streamProcessorFactory;
    Task::Controller taskController;
    Media::FileController fileController;
    Media::SourceController sourceController;
    Media::StreamProvider streamProvider;
};

MediaContext::Private::Private(MediaContext* context, int cacheLifetime)
    : fileController(static_cast<Media::ICreatorFileParser*>(&executorFactory))
    , streamProvider(static_cast<Media::ICreatorVideoDecoder*>(&executorFactory),
                     static_cast<Media::ICreatorAudioDecoder*>(&executorFactory),
                     static_cast<Media::ICreatorVideoStreamCutter*>(&streamProcessorFactory),
                     static_cast<Media::ICreatorAudioStreamCutter*>(&streamProcessorFactory),
                     cacheLifetime) {
    // The receiver is the context, so a signal from a controller's own thread is emitted
    // again on the thread that built the context.
    void* task = &taskController;
    void* file = &fileController;
    QObject::connect(
        &taskController, &Task::Controller::isBusy, context,
        [context, task] { emit context->becameBusy(task); }, Qt::AutoConnection);
    QObject::connect(
        &taskController, &Task::Controller::isIdle, context,
        [context, task] { emit context->becameIdle(task); }, Qt::AutoConnection);
    QObject::connect(
        &fileController, &Media::FileController::isBusy, context,
        [context, file] { emit context->becameBusy(file); }, Qt::AutoConnection);
    QObject::connect(
        &fileController, &Media::FileController::isIdle, context,
        [context, file] { emit context->becameIdle(file); }, Qt::AutoConnection);
}

MediaContext::MediaContext(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.addOptions(commandLineOptions());
    parser.parse(arguments);
    // Unlike "render-jobs" there is no fallback: text that is no number gives 0.
    const int cacheLifetime = parser.value(QStringLiteral("cache-ttl")).toInt(nullptr, 10);
    d = std::make_unique<Private>(this, cacheLifetime);
}

MediaContext::~MediaContext() = default;

QList<QCommandLineOption> MediaContext::commandLineOptions() {
    return {QCommandLineOption(QStringLiteral("cache-ttl"),
                               QStringLiteral("Lifetime of a decoded stream cache"),
                               QStringLiteral("time in msec"), QStringLiteral("5000"))};
}

} // namespace EditorService
