#pragma once

#include "service/api/EditorServiceExport.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <map>
#include <memory>

namespace EditorService {

class AbstractService;

// Makes services by name. The host owns one, in a std::shared_ptr, fills it with factories
// before it runs anything, and keeps it alive for every run; services that start further
// services (the script service) are handed the loader's weak pointer by their factory.
//
// Registration is not synchronised: it belongs to set-up. After it, createService only reads,
// so any number of threads may call it at once.
class EDITORSERVICE_EXPORT ServiceLoader : public std::enable_shared_from_this<ServiceLoader> {
public:
    using Factory =
        std::function<std::shared_ptr<AbstractService>(std::weak_ptr<const ServiceLoader>)>;

    ServiceLoader();
    ServiceLoader(const ServiceLoader&) = delete;
    ServiceLoader& operator=(const ServiceLoader&) = delete;
    virtual ~ServiceLoader();

    // Registers a factory under a name, replacing any factory of the same name. The summary is
    // the one line that lists the service in the host's help.
    void registerService(const QString& serviceName, const QString& summary, Factory factory);

    // A new service. Throws Error "Unknown service \"%1\", known services: %2" for a name
    // that has no factory, the name with its control characters, quotes and backslashes
    // escaped, the known names sorted and joined by ", ".
    virtual std::shared_ptr<AbstractService> createService(const QString& serviceName) const;

    QStringList serviceNames() const;
    QString summary(const QString& serviceName) const;

private:
    struct Entry {
        QString summary;
        Factory factory;
    };
    std::map<QString, Entry> services;
};

} // namespace EditorService
