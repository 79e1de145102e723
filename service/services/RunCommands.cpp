#include "service/services/RunCommands.h"

#include "service/api/AbstractService.h"
#include "service/api/Error.h"
#include "service/api/ServiceRunRequest.h"
#include "service/services/LimitedResourceUseFor.h"

namespace EditorService {

rxcpp::observable<nlohmann::json>
runCommands(const std::shared_ptr<Velmor::rx::LimitedResource>& resource,
            const rxcpp::observable<QStringList>& commands,
            std::weak_ptr<const ServiceLoader> serviceLoader) {
    // The service and the locked loader live only until run has returned.
    const auto start = [loader = std::move(serviceLoader)](const ServiceRunRequest& command) {
        const auto lockedLoader = loader.lock();
        if (!lockedLoader)
            throw Error(QStringLiteral("The service loader is gone").toStdString());
        return lockedLoader->createService(command.serviceName)->run(command.arguments);
    };
    const auto requests =
        commands.map([](const QStringList& line) { return ServiceRunRequest::fromCli(line, {}); });
    // useFor holds a plain pointer to the limiter: the finally keeps it alive for as long as the
    // chain lives.
    return resource->useFor(start)(requests).finally([resource] {}).as_dynamic();
}

} // namespace EditorService
