#include "host/services/EchoService.h"

#include "platform/serialize/QStringJson.h"

QString EchoService::serviceId() {
    return QStringLiteral("echo");
}

rxcpp::observable<nlohmann::json> EchoService::run(const rxcpp::observable<EchoRequest>& requests) {
    return requests
        .map([](const EchoRequest& request) {
            return nlohmann::json{{"echo", request.arguments}};
        })
        .as_dynamic();
}
