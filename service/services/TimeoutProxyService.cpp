#include "service/services/TimeoutProxyService.h"

#include "platform/rxapp/RxApp.h"
#include "service/services/TimeoutRequest.h"
#include "service/services/TimeoutRequestSerializer.h"

#include <chrono>
#include <cstdint>

namespace EditorService {

TimeoutProxyService::TimeoutProxyService(const std::shared_ptr<AbstractService>& service,
                                         std::function<void(const Request&)> callback)
    : service(service)
    , callback(std::move(callback)) {}

TimeoutProxyService::TimeoutProxyService(const TimeoutProxyService& other) = default;
TimeoutProxyService::TimeoutProxyService(TimeoutProxyService&& other) noexcept = default;
TimeoutProxyService& TimeoutProxyService::operator=(const TimeoutProxyService& other) = default;
TimeoutProxyService& TimeoutProxyService::operator=(TimeoutProxyService&& other) noexcept = default;
TimeoutProxyService::~TimeoutProxyService() = default;

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
            // The error path only observes: the selector never resumes, it always rethrows.
            const auto reportExpiry =
                [limited, callback](std::exception_ptr error) -> rxcpp::observable<nlohmann::json> {
                try {
                    std::rethrow_exception(error);
                } catch (const rxcpp::timeout_error&) {
                    callback(*limited->request);
                    throw;
                }
            };
            return values
                .timeout(std::chrono::duration<std::int64_t>(*limited->timeout),
                         RxApp::instance()->newThread())
                .on_error_resume_next(reportExpiry)
                .observe_on(RxApp::instance()->mainThread())
                .as_dynamic();
        })
        .as_dynamic();
}

} // namespace EditorService
