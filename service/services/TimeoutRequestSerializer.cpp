#include "service/services/TimeoutRequestSerializer.h"

namespace EditorService {

template class DefaultRequestSerializer<TimeoutRequest>;

TimeoutRequestSerializer::TimeoutRequestSerializer() = default;

TimeoutRequestSerializer::TimeoutRequestSerializer(
    std::unique_ptr<AbstractRequestSerializer>&& wrapped)
    : wrapped(std::move(wrapped)) {}

std::unique_ptr<Request> TimeoutRequestSerializer::loadFromCli(const QStringList& arguments) {
    std::unique_ptr<Request> wrappedRequest = wrapped->loadFromCli(arguments);
    std::unique_ptr<Request> request =
        DefaultRequestSerializer<TimeoutRequest>::loadFromCli(arguments);
    static_cast<TimeoutRequest&>(*request).request = std::move(wrappedRequest);
    return request;
}

std::unique_ptr<Request> TimeoutRequestSerializer::loadFromJson(const nlohmann::json& value) {
    std::unique_ptr<Request> request =
        DefaultRequestSerializer<TimeoutRequest>::loadFromJson(value);
    static_cast<TimeoutRequest&>(*request).request = wrapped->loadFromJson(value);
    return request;
}

QStringList TimeoutRequestSerializer::toCli(const Request& request) const {
    const auto* limited = dynamic_cast<const TimeoutRequest*>(&request);
    if (!limited)
        return wrapped->toCli(request);
    QStringList arguments = limited->request ? wrapped->toCli(*limited->request) : QStringList();
    return arguments + DefaultRequestSerializer<TimeoutRequest>::toCli(request);
}

nlohmann::json TimeoutRequestSerializer::toJson(const Request& request) const {
    const auto* limited = dynamic_cast<const TimeoutRequest*>(&request);
    if (!limited)
        return wrapped->toJson(request);
    nlohmann::json value = limited->request ? wrapped->toJson(*limited->request) : nlohmann::json();
    const nlohmann::json limit = DefaultRequestSerializer<TimeoutRequest>::toJson(request);
    if (!limit.is_null())
        value.merge_patch(limit);
    return value;
}

} // namespace EditorService
