#pragma once

#include "platform/package/PackageDirectory.h"
#include "platform/package/PackageMessages.h"
#include "platform/package/Subscriber.h"

#include <QString>
#include <QStringList>
#include <memory>

namespace Velmor::App {
class ILookAndFeelManager;
}

namespace Package {

// Offers the content of the installed packages. startLoading reads the manifests of the
// package directory on a thread of its own; waitForFinishLoading blocks until that has ended
// and rethrows what the loading threw.
class ContentProvider : public PubSub::Subscriber<InstallFinishedNotification, GetPackagesRequest,
                                                  LoadPackagesRequest, PackageRemoveRequest> {
public:
    explicit ContentProvider(std::shared_ptr<Velmor::App::ILookAndFeelManager> lookAndFeel,
                             const QString& directory = packageDirectory());
    ContentProvider(const ContentProvider&) = delete;
    ContentProvider& operator=(const ContentProvider&) = delete;
    ~ContentProvider() override;

    // Starts loading; a loading still running is waited for first.
    void startLoading();
    // Returns at once when no loading was started.
    void waitForFinishLoading();

    QString directory() const;
    const std::shared_ptr<Velmor::App::ILookAndFeelManager>& lookAndFeel() const;
    // The names of the loaded packages, in file name order, then in order of installation.
    QStringList packages() const;

    void receive(const InstallFinishedNotification& notification) override;
    void receive(const GetPackagesRequest& request) override;
    void receive(const LoadPackagesRequest& request) override;
    void receive(const PackageRemoveRequest& request) override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Package
