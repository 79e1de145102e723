#include "media/ExportSession.h"

#include "media/ExistingOutput.h"
#include "media/ExportRegistry.h"
#include "media/ExportValues.h"
#include "media/ProgressPacer.h"
#include "media/ProjectInputs.h"
#include "media/QueuedValueTimer.h"
#include "media/StreamGate.h"
#include "platform/av/OutputFormats.h"
#include "platform/av/Upright.h"
#include "platform/editorlogic/FileController.h"
#include "platform/editorlogic/TaskController.h"
#include "platform/export/PresetProvider.h"
#include "platform/model/Video.h"
#include "platform/rxapp/LimitedResource.h"
#include "service/api/Error.h"
#include "service/contexts/GlobalContextProvider.h"

#include <QDateTime>
#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <mutex>
#include <optional>
#include <poll.h>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace EditorService {
namespace {

using Json = nlohmann::json;

std::string text(const QString& string) {
    return string.toStdString();
}

// The stream the export shows: the first video that is no cover art; null for none.
const Velmor::AV::StreamInfo* videoStream(const Velmor::AV::MediaInfo& info) {
    for (const auto& stream : info.streams) {
        if (stream.type == "video" && !stream.attachedPicture)
            return &stream;
    }
    return nullptr;
}

bool hasAudio(const Velmor::AV::MediaInfo& info) {
    for (const auto& stream : info.streams) {
        if (stream.type == "audio")
            return true;
    }
    return false;
}

// The preset made for the input: its original size is the video's as shown (upright, square
// pixels); sound alone has no size.
Export::ExportSettings settingsFor(const ExportRequest& request,
                                   const Velmor::AV::MediaInfo& info) {
    const Velmor::AV::StreamInfo* video = videoStream(info);
    if (!video && !hasAudio(info))
        throw Error(text(QStringLiteral("No video stream in %1").arg(request.path)));
    std::optional<Media::Video> project;
    if (video) {
        const Velmor::AV::Size shown = Velmor::AV::Upright::displaySize(
            {video->width, video->height}, video->rotation, video->sampleAspectRatio);
        project = Media::Video{shown.width, shown.height};
    }
    const auto provider = request.presetContext.makeProvider(project ? &*project : nullptr);
    Export::ExportSettings settings;
    settings.input = text(request.path);
    settings.output = text(request.output);
    settings.preset = provider->preset();
    settings.range = request.range;
    settings.overwrite = request.overwrite;
    return settings;
}

bool isPipe(const QString& path) {
    struct stat status {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISFIFO(status.st_mode);
}

// What a pipe is taken for before it is read: a picture of a size not known yet, which the
// export takes from the pictures themselves; without any, it writes the sound alone.
Velmor::AV::MediaInfo unknownPicture() {
    Velmor::AV::StreamInfo video;
    video.type = "video";
    Velmor::AV::MediaInfo info;
    info.streams.push_back(video);
    return info;
}

// A render-job job that gives its place straight back.
rxcpp::observable<int> placeGivenBack() {
    return rxcpp::observable<>::create<int>(
        [](const rxcpp::subscriber<int>& done) { done.on_completed(); });
}

std::shared_ptr<Velmor::rx::LimitedResource> renderJobs() {
    auto* provider = GlobalContextProvider::instance();
    if (!provider)
        throw Error("No runtime: the process has no GlobalContextProvider");
    return provider->resource(GlobalContextProvider::RenderJobs);
}

} // namespace

class ExportSession::Private {
public:
    // Where the export is. Only Running ends through the run; a cancel ends the others at once.
    enum class Phase {
        Parsing,    // waiting for its input's description
        Waiting,    // waiting for a render-job place
        Granted,    // holding a place, its task not yet begun
        Running,    // its task runs
        Cancelling, // its task runs and was asked to stop
        Ended,
    };

    Private(ExportSession& self, ExportRequest request, ExportRunFactory exports,
            rxcpp::subscriber<Json> subscriber, std::shared_ptr<ExportRegistry> registry,
            rxcpp::observe_on_one_worker waiting)
        : self(self)
        , request(std::move(request))
        , output(text(this->request.output))
        , exports(std::move(exports))
        , gate(std::move(subscriber))
        , registry(std::move(registry))
        , ticks(std::move(waiting)) {}

    ExportSession& self;
    const ExportRequest request;
    const std::string output;
    const ExportRunFactory exports;
    StreamGate gate;
    const std::shared_ptr<ExportRegistry> registry;

    std::mutex mutex;
    Phase phase = Phase::Parsing;
    std::uint64_t place = 0;
    std::shared_ptr<ExportRun> run;
    QueuedValueTimer ticks;
    // A pipe input's reader while the session lives; -1 for a file.
    int pipeReader = -1;

    ~Private() {
        if (pipeReader >= 0)
            ::close(pipeReader);
    }

    // The stream's one end, whoever comes first: a failure, or the done value.
    void fail(std::exception_ptr error) {
        settle();
        gate.fail(error);
    }
    void finish(const Json& done) {
        settle();
        gate.complete(done);
    }

    void settle() {
        {
            std::lock_guard<std::mutex> lock(mutex);
            endLocked();
        }
        ticks.stop();
    }

    void endLocked() {
        if (phase == Phase::Waiting)
            registry->leaveQueue(place);
        phase = Phase::Ended;
    }

    bool hasEnded() {
        std::lock_guard<std::mutex> lock(mutex);
        return phase == Phase::Ended;
    }

    // Decided under the lock, so that no task begins between the decision and the end.
    void cancel() {
        std::shared_ptr<ExportRun> running;
        bool endsNow = false;
        {
            std::lock_guard<std::mutex> lock(mutex);
            switch (phase) {
            case Phase::Ended:
            case Phase::Cancelling:
                return;
            case Phase::Running:
                phase = Phase::Cancelling;
                running = run;
                break;
            default:
                endLocked();
                endsNow = true;
                break;
            }
        }
        if (running)
            running->cancel();
        if (!endsNow)
            return;
        ticks.stop();
        gate.fail(exportCancelled(output));
    }

    void parsed(const ParsedInput& input, std::exception_ptr error) {
        if (error) {
            fail(parseFailure(error));
            return;
        }
        try {
            Export::ExportSettings settings = settingsFor(request, input.info);
            settings.project = input.project;
            waitForPlace(settings);
        } catch (...) {
            fail(std::current_exception());
        }
    }

    // Silent until the pipe has something to read (or its writer left), as a parse of it would
    // be, so that a time limit on silence ends an export of a pipe nobody feeds. The descriptor
    // stays open for the session's life: a pipe's bytes are dropped when its last reader and
    // writer have closed it, which must not happen before the export opens it.
    void awaitPipe() {
        const QByteArray path = QFile::encodeName(request.path);
        pipeReader = ::open(path.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
        if (pipeReader < 0) {
            fail(std::make_exception_ptr(Error("Can not open media file: " + text(request.path)
                                               + ": " + std::strerror(errno))));
            return;
        }
        pollfd waiting{pipeReader, POLLIN, 0};
        while (!hasEnded() && ::poll(&waiting, 1, 50) == 0) {
        }
        if (!hasEnded())
            parsed(ParsedInput{unknownPicture(), nullptr}, nullptr);
    }

    // A parse dropped with the runtime is the export's own cancellation.
    std::exception_ptr parseFailure(std::exception_ptr error) const {
        try {
            std::rethrow_exception(error);
        } catch (const Media::ProbeCancelled&) {
            return exportCancelled(output);
        } catch (...) {
            return error;
        }
    }

    void waitForPlace(const Export::ExportSettings& settings) {
        const auto resource = renderJobs();
        if (resource->limit < 1) {
            if (grant())
                startRun(settings, [] {});
            return;
        }
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (phase != Phase::Parsing)
                return;
            phase = Phase::Waiting;
            // Its first value is due before anybody can count it waiting.
            startQueuedValues();
            // Places are taken on the file controller's one thread, in the order the exports
            // go on the resource's queue.
            place = registry->enterQueue();
        }
        auto session = self.shared_from_this();
        resource->jobQueue.get_subscriber().on_next(
            [session, settings] { return session->d->placeGranted(settings); });
    }

    // The export now holds a place; false when it ended first.
    bool grant() {
        std::lock_guard<std::mutex> lock(mutex);
        if (phase != Phase::Parsing && phase != Phase::Waiting)
            return false;
        if (phase == Phase::Waiting)
            registry->leaveQueue(place);
        phase = Phase::Granted;
        return true;
    }

    // The render-job place's job: it is held until the returned stream completes.
    rxcpp::observable<int> placeGranted(const Export::ExportSettings& settings) {
        ticks.stop();
        if (!grant())
            return placeGivenBack();
        rxcpp::subjects::subject<int> held;
        const std::function<void()> giveBack = [held] { held.get_subscriber().on_completed(); };
        try {
            startRun(settings, giveBack);
        } catch (...) {
            fail(std::current_exception());
            return placeGivenBack();
        }
        return held.get_observable().as_dynamic();
    }

    void startRun(const Export::ExportSettings& settings, const std::function<void()>& giveBack) {
        auto* tasks = Task::Controller::instance();
        if (!tasks)
            throw std::logic_error("The media context has no task controller");
        const qint64 startedMs = QDateTime::currentMSecsSinceEpoch();
        auto session = self.shared_from_this();
        tasks->submitConcurrent([session, settings, startedMs,
                                 giveBack] { session->run(settings, startedMs, giveBack); },
                                [session, giveBack] { session->dropped(giveBack); });
    }

    void startQueuedValues() {
        std::weak_ptr<ExportSession> weak = self.shared_from_this();
        ticks.start([weak] {
            const auto session = weak.lock();
            return session && session->d->emitQueuedValue();
        });
    }

    bool emitQueuedValue() {
        return gate.nextWhile(
            [this] { return isWaiting(); },
            [this] { return ExportValues::queued(output, registry->ahead(place)); });
    }

    bool isWaiting() {
        std::lock_guard<std::mutex> lock(mutex);
        return phase == Phase::Waiting;
    }

    // False when the export ended before its task began.
    bool beginRun() {
        std::lock_guard<std::mutex> lock(mutex);
        if (phase != Phase::Granted)
            return false;
        phase = Phase::Running;
        return true;
    }

    // False when cancelled already: the run then never starts.
    bool setRunning(std::shared_ptr<ExportRun> made) {
        std::lock_guard<std::mutex> lock(mutex);
        if (phase != Phase::Running)
            return false;
        run = std::move(made);
        return true;
    }

    void clearRunning() {
        std::lock_guard<std::mutex> lock(mutex);
        run.reset();
    }

    Export::ExportResult runOnce(const Export::ExportSettings& settings) {
        std::shared_ptr<ExportRun> made = exports(settings);
        if (!setRunning(made))
            std::rethrow_exception(exportCancelled(output));
        ProgressPacer pacer([this](const Export::ExportProgress& progress) {
            gate.next(ExportValues::progress(output, progress));
        });
        std::exception_ptr failure;
        Export::ExportResult result;
        try {
            result = made->run(
                [&pacer](const Export::ExportProgress& progress) { pacer.update(progress); });
        } catch (...) {
            failure = std::current_exception();
        }
        pacer.stop();
        clearRunning();
        if (failure)
            std::rethrow_exception(failure);
        return result;
    }
};

ExportSession::ExportSession(ExportRequest request, ExportRunFactory exports,
                             rxcpp::subscriber<nlohmann::json> subscriber,
                             std::shared_ptr<ExportRegistry> registry,
                             rxcpp::observe_on_one_worker waiting)
    : d(std::make_unique<Private>(*this, std::move(request), std::move(exports),
                                  std::move(subscriber), std::move(registry), std::move(waiting))) {
}

ExportSession::~ExportSession() = default;

void ExportSession::begin(Media::FileController& files) {
    // An output its name says it is not fails before the input is read.
    Velmor::AV::containerFor(d->output,
                             d->request.presetContext.makeProvider(nullptr)->preset().container());
    auto session = shared_from_this();
    d->registry->add(session);
    d->gate.onUnsubscribe([session] { session->cancel(); });
    if (isPipe(d->request.path)) {
        // A pipe is read once: the export reads it, and learns its streams as it goes.
        files.submit([session] { session->d->awaitPipe(); }, [session] { session->cancel(); });
        return;
    }
    parseInput(
        files, d->request.path,
        [session](const ParsedInput& input, std::exception_ptr error) {
            session->d->parsed(input, error);
        },
        [session] { return !session->d->hasEnded(); });
}

void ExportSession::cancel() {
    d->cancel();
}

void ExportSession::run(const Export::ExportSettings& settings, qint64 startedMs,
                        const std::function<void()>& giveBack) {
    if (!d->beginRun()) {
        giveBack();
        return;
    }
    std::exception_ptr failure;
    Export::ExportResult result;
    try {
        result = d->runOnce(settings);
    } catch (...) {
        failure = std::current_exception();
    }
    const qint64 finishedMs = QDateTime::currentMSecsSinceEpoch();
    giveBack();
    if (failure) {
        d->fail(ExistingOutput::asCheckFailure(failure));
        return;
    }
    d->finish(ExportValues::done(settings, result, startedMs, finishedMs));
}

void ExportSession::dropped(const std::function<void()>& giveBack) {
    giveBack();
    d->fail(exportCancelled(d->output));
}

} // namespace EditorService
