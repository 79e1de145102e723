#include "service/services/ScriptService.h"

#include "service/CLIUtils.h"
#include "service/services/RunCommands.h"

namespace EditorService {

template class DefaultServiceImpl<ScriptRequest>;

ScriptService::ScriptService(std::weak_ptr<const ServiceLoader> serviceLoader)
    : serviceLoader(std::move(serviceLoader)) {}

QString ScriptService::serviceId() {
    return QStringLiteral("script");
}

rxcpp::observable<nlohmann::json>
ScriptService::run(const rxcpp::observable<ScriptRequest>& requests) {
    const auto loader = serviceLoader;
    return requests
        .flat_map(
            [loader](const ScriptRequest& request) {
                // The limiter comes first, the script second.
                auto resource = std::make_shared<Velmor::rx::LimitedResource>(request.jobs);
                return runCommands(resource, CLIUtils::openCommandScript(request.path), loader);
            },
            rxcpp::util::take_at<1>(), rxcpp::identity_current_thread())
        .as_dynamic();
}

} // namespace EditorService
