#include "platform/package/ContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <exception>
#include <mutex>
#include <thread>

namespace Package {

class ContentProvider::Private {
public:
    std::shared_ptr<Velmor::App::ILookAndFeelManager> lookAndFeel;
    QString directory;
    mutable std::mutex mutex;
    QStringList packages;
    std::exception_ptr failure;
    std::thread loader;

    ~Private() { join(); }

    void join() {
        if (loader.joinable())
            loader.join();
    }

    void load() {
        try {
            Velmor::Testing::Probe::hit("Package::ContentProvider::load");
            const QStringList found = readPackages(directory);
            {
                std::lock_guard<std::mutex> lock(mutex);
                packages = found;
            }
            Velmor::Testing::CallLog::record("Package::ContentProvider::loadingFinished("
                                             + std::to_string(found.size()) + ")");
        } catch (...) {
            std::lock_guard<std::mutex> lock(mutex);
            failure = std::current_exception();
        }
    }
};

ContentProvider::ContentProvider(std::shared_ptr<Velmor::App::ILookAndFeelManager> lookAndFeel,
                                 const QString& directory)
    : d(std::make_unique<Private>()) {
    Velmor::Testing::Probe::hit("Package::ContentProvider::ContentProvider");
    d->lookAndFeel = std::move(lookAndFeel);
    d->directory = directory;
    Velmor::Testing::CallLog::record("Package::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    d->join();
    Velmor::Testing::CallLog::record("Package::ContentProvider::~ContentProvider");
}

void ContentProvider::startLoading() {
    Velmor::Testing::CallLog::record("Package::ContentProvider::startLoading");
    d->join();
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->failure = nullptr;
    }
    d->loader = std::thread(&Private::load, d.get());
}

void ContentProvider::waitForFinishLoading() {
    Velmor::Testing::Probe::hit("Package::ContentProvider::waitForFinishLoading");
    d->join();
    std::exception_ptr failure;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        failure = d->failure;
    }
    if (failure)
        std::rethrow_exception(failure);
    Velmor::Testing::CallLog::record("Package::ContentProvider::waitForFinishLoading");
}

QString ContentProvider::directory() const {
    return d->directory;
}

const std::shared_ptr<Velmor::App::ILookAndFeelManager>& ContentProvider::lookAndFeel() const {
    return d->lookAndFeel;
}

QStringList ContentProvider::packages() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->packages;
}

void ContentProvider::receive(const InstallFinishedNotification& notification) {
    const auto name = readManifest(notification.manifestFile);
    if (!name)
        return;
    std::lock_guard<std::mutex> lock(d->mutex);
    if (!d->packages.contains(*name))
        d->packages.append(*name);
}

void ContentProvider::receive(const GetPackagesRequest& request) {
    if (request.reply)
        request.reply(packages());
}

void ContentProvider::receive(const LoadPackagesRequest&) {
    startLoading();
}

void ContentProvider::receive(const PackageRemoveRequest& request) {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->packages.removeAll(request.packageName);
}

} // namespace Package
