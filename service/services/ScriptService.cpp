#include "service/services/ScriptService.h"

#include "service/CLIUtils.h"
#include "service/api/AbstractService.h"
#include "service/api/Error.h"
#include "service/api/ServiceRunRequest.h"
#include "service/services/LimitedResourceUseFor.h"

namespace EditorService {

template class DefaultServiceImpl<ScriptRequest>;

ScriptService::ScriptService(std::weak_ptr<const ServiceLoader> serviceLoader)
    : serviceLoader(std::move(serviceLoader)) {}

ScriptService::ScriptService(const ScriptService& other) = default;
ScriptService::ScriptService(ScriptService&& other) noexcept = default;
ScriptService& ScriptService::operator=(const ScriptService& other) = default;
ScriptService& ScriptService::operator=(ScriptService&& other) noexcept = default;
ScriptService::~ScriptService() = default;

QString ScriptService::serviceId() {
    return QStringLiteral("script");
}

rxcpp::observable<nlohmann::json>
ScriptService::run(const rxcpp::observable<ScriptRequest>& requests) {
    const auto loader = serviceLoader;
    return requests
        .flat_map(
            [loader](const ScriptRequest& request) {
                auto resource = std::make_shared<Velmor::rx::LimitedResource>(request.jobs);
                // The service and the locked loader live only until run has returned.
                const auto start = [loader](const ServiceRunRequest& command) {
                    const auto lockedLoader = loader.lock();
                    if (!lockedLoader)
                        throw Error("The service loader is gone");
                    return lockedLoader->createService(command.serviceName)->run(command.arguments);
                };
                const auto commands =
                    CLIUtils::openCommandScript(request.path).map([](const QStringList& line) {
                        return ServiceRunRequest::fromCli(line, {});
                    });
                // useFor holds a plain pointer to the limiter: the finally keeps it alive for as
                // long as the chain lives.
                return resource->useFor(start)(commands).finally([resource] {}).as_dynamic();
            },
            rxcpp::util::take_at<1>(), rxcpp::identity_current_thread())
        .as_dynamic();
}

} // namespace EditorService
