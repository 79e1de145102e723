#include "service/contexts/GlobalContextProvider.h"

#include "platform/rxapp/LimitedResource.h"
#include "service/contexts/AbstractContext.h"
#include "service/contexts/ContentContext.h"
#include "service/contexts/EngineContext.h"
#include "service/contexts/MediaContext.h"
#include "service/contexts/RenderContext.h"

#include <QCommandLineParser>
#include <QEventLoop>
#include <QMetaEnum>
#include <QSet>
#include <iterator>
#include <map>
#include <mutex>
#include <stdexcept>

namespace EditorService {
namespace {

const QCommandLineOption hotStartOption(QStringLiteral("hot-start"),
                                        QStringLiteral("Initialize all resources first of all."));
const QCommandLineOption
    renderJobsOption(QStringList{QStringLiteral("render-jobs"), QStringLiteral("rj")},
                     QStringLiteral("Allow N render jobs at once; 1 job with no arg."),
                     QStringLiteral("N"), QString::number(1));

QMetaEnum globalContextEnum() {
    const QMetaObject& meta = GlobalContextProvider::staticMetaObject;
    return meta.enumerator(meta.indexOfEnumerator("GlobalContext"));
}

// Destroys its contexts from the highest key down, so that the engine, which every other
// context runs on, stops last.
class ContextMap
    : public std::map<GlobalContextProvider::GlobalContext, std::shared_ptr<AbstractContext>> {
public:
    ContextMap() = default;
    ContextMap(const ContextMap&) = delete;
    ContextMap& operator=(const ContextMap&) = delete;
    ~ContextMap() {
        while (!empty())
            erase(std::prev(end()));
    }
};

} // namespace

std::atomic<GlobalContextProvider*> GlobalContextProvider::s_self{nullptr};

class GlobalContextProvider::Private {
public:
    explicit Private(const QStringList& arguments)
        : arguments(arguments) {}

    void markBusy(void* worker) {
        std::lock_guard<std::recursive_mutex> lock(mutex);
        if (!busyWorkers.contains(worker))
            busyWorkers.insert(worker);
    }

    // Any idle signal wakes the waiter, which tests the set again.
    void markIdle(void* worker) {
        std::lock_guard<std::recursive_mutex> lock(mutex);
        if (!busyWorkers.isEmpty())
            busyWorkers.remove(worker);
        waitLoop.quit();
    }

    std::recursive_mutex mutex;
    QStringList arguments;
    ContextMap contexts;
    std::map<Resource, std::shared_ptr<Velmor::rx::LimitedResource>> resources;
    QEventLoop waitLoop;
    QSet<void*> busyWorkers;
};

GlobalContextProvider::GlobalContextProvider(const QStringList& arguments)
    : QObject(nullptr)
    , d(std::make_unique<Private>(arguments)) {
    s_self = this;
    QCommandLineParser parser;
    parser.addOptions(options());
    // Options the runtime doesn't know are no error: other parsers read the same list.
    parser.parse(arguments);
    if (parser.isSet(hotStartOption))
        requireAll();
}

GlobalContextProvider::~GlobalContextProvider() {
    s_self = nullptr;
}

GlobalContextProvider* GlobalContextProvider::instance() {
    return s_self;
}

QList<QCommandLineOption> GlobalContextProvider::options() {
    QList<QCommandLineOption> all{hotStartOption, renderJobsOption};
    all.append(EngineContext::commandLineOptions());
    all.append(MediaContext::commandLineOptions());
    return all;
}

void GlobalContextProvider::require(QFlags<GlobalContext> contexts) {
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    const QMetaEnum keys = globalContextEnum();
    const int mask = static_cast<int>(contexts);
    for (int index = 0; index < keys.keyCount(); ++index) {
        const int value = keys.value(index);
        if ((value & mask) == value && (value != 0 || mask == 0))
            requireInner(static_cast<GlobalContext>(value));
    }
}

void GlobalContextProvider::requireAll() {
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    const QMetaEnum keys = globalContextEnum();
    for (int index = 0; index < keys.keyCount(); ++index)
        requireInner(static_cast<GlobalContext>(keys.value(index)));
}

GlobalContextProvider::GlobalContexts GlobalContextProvider::builtContexts() const {
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    GlobalContexts built;
    for (const auto& entry : d->contexts)
        built |= entry.first;
    return built;
}

void GlobalContextProvider::requireInner(GlobalContext context) {
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    if (d->contexts.count(context) != 0)
        return;

    std::shared_ptr<AbstractContext> built;
    switch (context) {
    case Engine:
        built = std::make_shared<EngineContext>(d->arguments);
        break;
    case Media:
        require(Engine);
        built = std::make_shared<MediaContext>(d->arguments);
        break;
    case Render:
        require(Media | Content);
        built = std::make_shared<RenderContext>();
        break;
    case Content:
        require(Media);
        built = std::make_shared<ContentContext>();
        break;
    }
    if (!built)
        return;
    d->contexts.emplace(context, built);

    // The provider is the receiver, so these connections, and the pointer they capture, end
    // with it.
    connect(
        built.get(), &AbstractContext::becameBusy, this,
        [this](void* worker) { d->markBusy(worker); }, Qt::AutoConnection);
    connect(
        built.get(), &AbstractContext::becameIdle, this,
        [this](void* worker) { d->markIdle(worker); }, Qt::AutoConnection);
}

std::shared_ptr<Velmor::rx::LimitedResource> GlobalContextProvider::resource(Resource which) const {
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    const auto found = d->resources.find(which);
    if (found != d->resources.end())
        return found->second;
    if (which != RenderJobs)
        throw std::invalid_argument("Unknown resource requested");

    QCommandLineParser parser;
    parser.addOption(renderJobsOption);
    parser.parse(d->arguments);
    bool isNumber = false;
    int count = parser.value(renderJobsOption).toInt(&isNumber, 10);
    if (!isNumber)
        count = 1;
    auto renderJobs = std::make_shared<Velmor::rx::LimitedResource>(count);
    d->resources.emplace(RenderJobs, renderJobs);
    return renderJobs;
}

void GlobalContextProvider::waitForWorkers() {
    std::lock_guard<std::recursive_mutex> lock(d->mutex);
    while (!d->busyWorkers.isEmpty())
        d->waitLoop.exec();
}

} // namespace EditorService
