#include "service/services/TimeoutProxyService.h"

#include "platform/rxapp/RxApp.h"
#include "service/services/LimitOnSilence.h"
#include "service/services/TimeoutRequest.h"
#include "service/services/TimeoutRequestSerializer.h"

#include <chrono>
#include <cstdint>

namespace EditorService {

TimeoutProxyService::TimeoutProxyService(const std::shared_ptr<AbstractService>& service,
                                         std::function<void(const Request&)> callback)
    : service(service)
    , callback(std::move(callback)) {}

QList<QCommandLineOption> TimeoutProxyService::options() {
    return {TimeoutRequest::timeoutOption()};
}

std::unique_ptr<AbstractRequestSerializer> TimeoutProxyService::requestSerializer() const {
    return std::make_unique<TimeoutRequestSerializer>(service->requestSerializer());
}

rxcpp::observable<nlohmann::json>
TimeoutProxyService::run(const rxcpp::observable<std::shared_ptr<Request>>& requests) {
    // The chain holds its own owners, so that it lives on when the proxy is gone.
    const auto service = this->service;
    const auto callback = this->callback;
    return requests
        .flat_map([service, callback](const std::shared_ptr<Request>& request)
                      -> rxcpp::observable<nlohmann::json> {
            const auto limited = std::dynamic_pointer_cast<TimeoutRequest>(request);
            if (!limited)
                return service->run(request);
            auto values = service->run(limited->request);
            if (!limited->timeout || *limited->timeout <= 0)
                return values;
            return limitOnSilence(
                values, std::chrono::duration<std::int64_t>(*limited->timeout),
                // Holds the request, so the reference handed to the callback stays valid.
                [limited, callback] { callback(*limited->request); },
                RxApp::instance()->newThread(), RxApp::instance()->mainThread());
        })
        .as_dynamic();
}

} // namespace EditorService
