#include "host/services/NoopService.h"

QString NoopRequest::description() const {
    return QStringLiteral("Emit one value and complete, for measuring");
}

QString NoopService::serviceId() {
    return QStringLiteral("noop");
}

rxcpp::observable<nlohmann::json> NoopService::run(const rxcpp::observable<NoopRequest>& requests) {
    return requests.map([](const NoopRequest&) {
                       return nlohmann::json{{"noop", true}};
                   })
        .as_dynamic();
}
