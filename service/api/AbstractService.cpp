#include "service/api/AbstractService.h"

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Error.h"
#include "service/api/Request.h"

namespace EditorService {

AbstractService::~AbstractService() = default;

std::unique_ptr<AbstractRequestSerializer> AbstractService::requestSerializer() const {
    throw Error(
        QStringLiteral("This service reads no requests from a command line or JSON").toStdString());
}

rxcpp::observable<nlohmann::json> AbstractService::run(const QStringList& arguments) {
    std::shared_ptr<Request> request;
    try {
        request = requestSerializer()->loadFromCli(arguments);
    } catch (...) {
        return rxcpp::observable<>::error<nlohmann::json>(std::current_exception());
    }
    return run(request);
}

rxcpp::observable<nlohmann::json> AbstractService::run(const std::shared_ptr<Request>& request) {
    return run(rxcpp::observable<>::just(request).as_dynamic());
}

} // namespace EditorService
