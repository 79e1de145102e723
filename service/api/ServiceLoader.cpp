#include "service/api/ServiceLoader.h"

#include "service/api/AbstractService.h"
#include "service/api/Error.h"

namespace EditorService {

ServiceLoader::ServiceLoader() = default;

ServiceLoader::~ServiceLoader() = default;

void ServiceLoader::registerService(const QString& serviceName, const QString& summary,
                                    Factory factory) {
    m_services[serviceName] = Entry{summary, std::move(factory)};
}

std::shared_ptr<AbstractService> ServiceLoader::createService(const QString& serviceName) const {
    const auto found = m_services.find(serviceName);
    if (found == m_services.end()) {
        throw Error(QStringLiteral("Unknown service \"%1\", known services: %2")
                        .arg(serviceName, serviceNames().join(QStringLiteral(", ")))
                        .toStdString());
    }
    return found->second.factory(weak_from_this());
}

QStringList ServiceLoader::serviceNames() const {
    QStringList names;
    for (const auto& service : m_services)
        names.append(service.first);
    return names;
}

QString ServiceLoader::summary(const QString& serviceName) const {
    const auto found = m_services.find(serviceName);
    return found == m_services.end() ? QString() : found->second.summary;
}

} // namespace EditorService
