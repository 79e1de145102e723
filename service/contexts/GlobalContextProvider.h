#pragma once

#include "service/api/EditorServiceExport.h"

#include <QCommandLineOption>
#include <QFlags>
#include <QList>
#include <QObject>
#include <QStringList>
#include <atomic>
#include <memory>

namespace Velmor::rx {
class LimitedResource;
}

namespace EditorService {

// The process-wide owner of the editor's runtime. Nothing of it runs until somebody requires
// it: require builds the contexts asked for and what they depend on, each once, on the
// caller's thread, and keeps them until the provider is destroyed. It also hands out the
// shared limited resources and lets its own thread wait until no worker is busy.
//
// require, requireAll and resource may be called from any thread; waitForWorkers only on the
// thread that created the provider.
class EDITORSERVICE_EXPORT GlobalContextProvider : public QObject {
    Q_OBJECT
public:
    // Declared in this order on purpose: require walks the keys by index.
    enum GlobalContext {
        Engine = 1,
        Media = 2,
        Render = 4,
        Content = 8,
    };
    Q_ENUM(GlobalContext)
    Q_DECLARE_FLAGS(GlobalContexts, GlobalContext)

    // A fixed underlying type: a caller may hand any number, which resource() refuses.
    enum Resource : int {
        RenderJobs = 0,
    };

    // arguments: the process's argument list. With "hot-start" the whole runtime is built
    // before the constructor returns.
    explicit GlobalContextProvider(const QStringList& arguments);
    ~GlobalContextProvider() override;

    // The provider alive now; null before the first and once its destructor has begun.
    static GlobalContextProvider* instance();
    // Every command-line option of the runtime.
    static QList<QCommandLineOption> options();

    void require(QFlags<GlobalContext> contexts);
    void requireAll();
    // The contexts built so far, whoever asked for them. Waits while another caller builds.
    GlobalContexts builtContexts() const;
    // The shared resource, built at its first use. Throws std::invalid_argument for a value
    // that names no resource.
    std::shared_ptr<Velmor::rx::LimitedResource> resource(Resource which) const;
    // Blocks until no worker is busy, spinning an event loop of its own on this thread, which
    // must be the provider's. It holds the provider's lock all the while, so that the busy and
    // idle handlers the loop delivers here can take it again: a worker that calls require,
    // resource or waitForWorkers from another thread on its way to idle blocks until the wait
    // is over, and since the wait waits for that worker, the two deadlock. Workers report and
    // leave the provider alone.
    void waitForWorkers();

private:
    void requireInner(GlobalContext context);

    class Private;
    std::unique_ptr<Private> d;

    // Read from any thread.
    static std::atomic<GlobalContextProvider*> s_self;
};

} // namespace EditorService

Q_DECLARE_OPERATORS_FOR_FLAGS(EditorService::GlobalContextProvider::GlobalContexts)
