#include "media/ExportService.h"

#include "media/ProgressPacer.h"
#include "media/RuntimeAccess.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/export/PresetProvider.h"
#include "platform/foundation/Temporaries.h"
#include "platform/model/Video.h"
#include "platform/rxapp/LimitedResource.h"
#include "service/api/Error.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <mutex>
#include <stdexcept>
#include <unistd.h>

namespace EditorService {
namespace {

using Json = nlohmann::json;

// One export from its subscription to its end, shared by the file controller's callback, the
// render-job queue, the task that encodes and the unsubscription that cancels.
struct ExportState {
    ExportRequest request;
    ExportRunFactory exports;
    rxcpp::subscriber<Json> subscriber;

    std::mutex mutex;
    bool cancelled = false;
    // Until its task takes it, an export waits for its input's parse or for a render-job place,
    // and nothing else would end its stream when it is cancelled there.
    bool started = false;
    std::shared_ptr<ExportRun> running;

    ExportState(ExportRequest request, ExportRunFactory exports, rxcpp::subscriber<Json> subscriber)
        : request(std::move(request))
        , exports(std::move(exports))
        , subscriber(std::move(subscriber)) {}

    bool isCancelled() {
        std::lock_guard<std::mutex> lock(mutex);
        return cancelled;
    }

    // A waiting export ends at once; a running one ends when its run gives up. Cancelled by
    // its own unsubscription, the error reaches nobody.
    void cancel() {
        std::shared_ptr<ExportRun> run;
        bool waiting = false;
        {
            std::lock_guard<std::mutex> lock(mutex);
            waiting = !started && !cancelled;
            cancelled = true;
            run = running;
        }
        if (run)
            run->cancel();
        if (waiting) {
            subscriber.on_error(std::make_exception_ptr(
                Export::ExportCancelled("Export cancelled: " + request.output.toStdString())));
        }
    }

    // False when cancelled already: the export then never starts.
    bool start() {
        std::lock_guard<std::mutex> lock(mutex);
        started = !cancelled;
        return started;
    }

    // False when cancelled already: the run then never starts.
    bool setRunning(std::shared_ptr<ExportRun> run) {
        std::lock_guard<std::mutex> lock(mutex);
        if (cancelled)
            return false;
        running = std::move(run);
        return true;
    }

    void clearRunning() {
        std::lock_guard<std::mutex> lock(mutex);
        running.reset();
    }
};

// The exports that have not ended, for cancelAll.
std::mutex& liveLock() {
    static std::mutex mutex;
    return mutex;
}

std::vector<std::weak_ptr<ExportState>>& live() {
    static auto* states = new std::vector<std::weak_ptr<ExportState>>;
    return *states;
}

void addLive(const std::shared_ptr<ExportState>& state) {
    std::lock_guard<std::mutex> lock(liveLock());
    auto& states = live();
    states.erase(std::remove_if(states.begin(), states.end(),
                                [](const auto& entry) { return entry.expired(); }),
                 states.end());
    states.push_back(state);
}

// A parse dropped with the runtime is the export's own cancellation.
std::exception_ptr exportFailure(const ExportRequest& request, std::exception_ptr error) {
    try {
        std::rethrow_exception(error);
    } catch (const Media::ProbeCancelled&) {
        return std::make_exception_ptr(
            Export::ExportCancelled("Export cancelled: " + request.output.toStdString()));
    } catch (...) {
        return error;
    }
}

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

Export::ExportSettings settingsFor(const ExportRequest& request,
                                   const Velmor::AV::MediaInfo& info) {
    const Velmor::AV::StreamInfo* video = nullptr;
    for (const auto& stream : info.streams) {
        if (stream.type == "video") {
            video = &stream;
            break;
        }
    }
    if (!video)
        throw Error(text(QStringLiteral("No video stream in %1").arg(request.path)));
    const Media::Video project{video->width, video->height};
    const auto provider = request.presetContext.makeProvider(&project);
    Export::ExportSettings settings;
    settings.input = text(request.path);
    settings.output = text(request.output);
    settings.preset = provider->preset();
    settings.range = request.range;
    return settings;
}

Json progressValue(const std::string& output, const Export::ExportProgress& progress) {
    return {{"export",
             {{"output", output},
              {"progress", progress.progress},
              {"frames", progress.frames},
              {"fps", progress.fps}}}};
}

Json doneValue(const Export::ExportSettings& settings, const Export::ExportResult& result,
               qint64 startedMs, qint64 finishedMs) {
    Json audio;
    if (result.audio) {
        audio = {{"codec", result.audio->codec},
                 {"sample_rate", result.audio->sampleRate},
                 {"channels", result.audio->channels},
                 {"bit_rate", result.audio->bitRate}};
    }
    return {{"export",
             {{"input", settings.input},
              {"output", settings.output},
              {"done", true},
              {"frames", result.frames},
              {"duration_ms", result.durationMs},
              {"bytes", result.bytes},
              {"video",
               {{"codec", result.video.codec},
                {"width", result.video.width},
                {"height", result.video.height},
                {"bit_rate", result.video.bitRate}}},
              {"audio", audio},
              {"started_ms", startedMs},
              {"finished_ms", finishedMs}}}};
}

// Runs on a concurrent task of the task controller, holding a render-job place that `place`
// gives back when it completes.
void encode(const std::shared_ptr<ExportState>& state, const Export::ExportSettings& settings,
            qint64 startedMs, const rxcpp::subjects::subject<int>& place) {
    if (!state->start()) {
        place.get_subscriber().on_completed();
        return;
    }
    std::exception_ptr failure;
    Export::ExportResult result;
    std::string temporary;
    try {
        std::shared_ptr<ExportRun> run = state->exports(settings);
        temporary = run->temporaryPath();
        Velmor::Temporaries::add(temporary);
        if (!state->setRunning(run))
            throw Export::ExportCancelled("Export cancelled: " + settings.output);
        const auto subscriber = state->subscriber;
        const std::string output = settings.output;
        ProgressPacer pacer([subscriber, output](const Export::ExportProgress& progress) {
            subscriber.on_next(progressValue(output, progress));
        });
        try {
            result = run->run(
                [&pacer](const Export::ExportProgress& progress) { pacer.update(progress); });
        } catch (...) {
            failure = std::current_exception();
        }
        pacer.stop();
        state->clearRunning();
    } catch (...) {
        failure = std::current_exception();
    }
    if (!temporary.empty()) {
        // The exporter removes its temporary itself; this covers a failure before it began.
        if (failure)
            QFile::remove(QString::fromStdString(temporary));
        Velmor::Temporaries::remove(temporary);
    }
    const qint64 finishedMs = QDateTime::currentMSecsSinceEpoch();
    place.get_subscriber().on_completed();
    if (failure) {
        state->subscriber.on_error(failure);
        return;
    }
    state->subscriber.on_next(doneValue(settings, result, startedMs, finishedMs));
    state->subscriber.on_completed();
}

// Queues the export for a render-job place; the job starts it when the place is free.
void queue(const std::shared_ptr<ExportState>& state, const Export::ExportSettings& settings) {
    auto* provider = GlobalContextProvider::instance();
    if (!provider)
        throw Error("No runtime: the process has no GlobalContextProvider");
    const auto renderJobs = provider->resource(GlobalContextProvider::RenderJobs);
    auto job = [state, settings]() -> rxcpp::observable<int> {
        if (state->isCancelled())
            return rxcpp::observable<>::create<int>(
                [](rxcpp::subscriber<int> done) { done.on_completed(); });
        auto* tasks = Task::Controller::instance();
        if (!tasks)
            throw std::logic_error("The media context has no task controller");
        rxcpp::subjects::subject<int> place;
        const qint64 startedMs = QDateTime::currentMSecsSinceEpoch();
        tasks->submitConcurrent(
            [state, settings, startedMs, place] { encode(state, settings, startedMs, place); });
        return place.get_observable().as_dynamic();
    };
    if (renderJobs->limit < 1) {
        job();
        return;
    }
    renderJobs->jobQueue.get_subscriber().on_next([state, job] {
        try {
            return job();
        } catch (...) {
            state->subscriber.on_error(std::current_exception());
            throw;
        }
    });
}

rxcpp::observable<Json> exportOne(const ExportRequest& request, const ExportRunFactory& exports) {
    return rxcpp::observable<>::create<Json>(
               [request, exports](rxcpp::subscriber<Json> subscriber) {
                   try {
                       if (checkOutput(request)) {
                           subscriber.on_next(
                               {{"export", {{"output", text(request.output)}, {"skipped", true}}}});
                           subscriber.on_completed();
                           return;
                       }
                       requireRuntime(GlobalContextProvider::Media);
                       auto* files = Media::FileController::instance();
                       if (!files)
                           throw std::logic_error("The media context has no file controller");
                       auto state = std::make_shared<ExportState>(request, exports, subscriber);
                       addLive(state);
                       subscriber.add([state] { state->cancel(); });
                       files->parse(
                           request.path,
                           [state](const Velmor::AV::MediaInfo& info, std::exception_ptr error) {
                               // A cancel ended the stream already.
                               if (state->isCancelled())
                                   return;
                               if (error) {
                                   state->subscriber.on_error(exportFailure(state->request, error));
                                   return;
                               }
                               try {
                                   queue(state, settingsFor(state->request, info));
                               } catch (...) {
                                   state->subscriber.on_error(std::current_exception());
                               }
                           },
                           [state] { return !state->isCancelled(); });
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

void ExportService::cancelAll() {
    std::vector<std::shared_ptr<ExportState>> states;
    {
        std::lock_guard<std::mutex> lock(liveLock());
        for (const auto& entry : live()) {
            if (auto state = entry.lock())
                states.push_back(std::move(state));
        }
    }
    for (const auto& state : states)
        state->cancel();
}

QString ExportService::serviceId() {
    return QStringLiteral("export");
}

rxcpp::observable<nlohmann::json>
ExportService::run(const rxcpp::observable<ExportRequest>& requests) {
    const auto factory = exports;
    return requests
        .flat_map([factory](const ExportRequest& request) { return exportOne(request, factory); })
        .as_dynamic();
}

} // namespace EditorService
