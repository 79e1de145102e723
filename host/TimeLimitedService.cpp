#include "host/TimeLimitedService.h"

#include "service/services/TimeoutProxyService.h"
#include "service/services/TimeoutRequest.h"

using namespace EditorService;

namespace {

// The command line that would run the request again: the service name, then its arguments
// without the stand-in for the program path.
QString commandLineOf(const QString& serviceName, const Request& request) {
    QStringList arguments = request.serializer()->toCli(request);
    if (!arguments.isEmpty() && arguments.first() == QLatin1String("app-path-stub"))
        arguments.removeFirst();
    arguments.prepend(serviceName);
    return arguments.join(QLatin1Char(' '));
}

} // namespace

TimeLimitedService::TimeLimitedService(QString serviceName,
                                       std::shared_ptr<AbstractService> service, Expiry expiry)
    : serviceName(std::move(serviceName))
    , service(std::move(service))
    , expiry(std::move(expiry)) {}

std::unique_ptr<AbstractRequestSerializer> TimeLimitedService::requestSerializer() const {
    return TimeoutProxyService(service, {}).requestSerializer();
}

rxcpp::observable<nlohmann::json>
TimeLimitedService::run(const rxcpp::observable<std::shared_ptr<Request>>& requests) {
    const auto name = serviceName;
    const auto wrapped = service;
    const auto onExpiry = expiry;
    return requests
        .flat_map([name, wrapped, onExpiry](const std::shared_ptr<Request>& request) {
            const auto limited = std::dynamic_pointer_cast<TimeoutRequest>(request);
            const int seconds = limited && limited->timeout ? *limited->timeout : 0;
            TimeoutProxyService proxy(wrapped, [name, onExpiry, seconds](const Request& expired) {
                onExpiry(seconds, commandLineOf(name, expired));
            });
            return proxy.run(request);
        })
        .as_dynamic();
}
