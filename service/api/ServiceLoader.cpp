#include "service/api/ServiceLoader.h"

#include "service/api/AbstractService.h"
#include "service/api/Error.h"

namespace EditorService {
namespace {

// A name comes from a script line or the command line and may hold any character: control
// characters, quotes and backslashes are escaped so that the message stays one whole line
// and says exactly what was asked for.
QString quoted(const QString& name) {
    QString text = QStringLiteral("\"");
    for (const QChar character : name) {
        const ushort code = character.unicode();
        if (character == QLatin1Char('"') || character == QLatin1Char('\\'))
            text += QLatin1Char('\\') + character;
        else if (code < 0x20 || code == 0x7f)
            text += QStringLiteral("\\x%1").arg(code, 2, 16, QLatin1Char('0'));
        else
            text += character;
    }
    return text + QLatin1Char('"');
}

} // namespace

ServiceLoader::ServiceLoader() = default;

ServiceLoader::~ServiceLoader() = default;

void ServiceLoader::registerService(const QString& serviceName, const QString& summary,
                                    Factory factory) {
    services[serviceName] = Entry{summary, std::move(factory)};
}

std::shared_ptr<AbstractService> ServiceLoader::createService(const QString& serviceName) const {
    const auto found = services.find(serviceName);
    if (found == services.end()) {
        throw Error(QStringLiteral("Unknown service %1, known services: %2")
                        .arg(quoted(serviceName), serviceNames().join(QStringLiteral(", ")))
                        .toStdString());
    }
    return found->second.factory(weak_from_this());
}

QStringList ServiceLoader::serviceNames() const {
    QStringList names;
    for (const auto& service : services)
        names.append(service.first);
    return names;
}

QString ServiceLoader::summary(const QString& serviceName) const {
    const auto found = services.find(serviceName);
    return found == services.end() ? QString() : found->second.summary;
}

} // namespace EditorService
