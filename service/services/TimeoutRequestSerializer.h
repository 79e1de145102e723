#pragma once

#include "service/requests/DefaultRequestSerializer.h"
#include "service/services/TimeoutRequest.h"

namespace EditorService {

extern template class EDITORSERVICE_EXPORT DefaultRequestSerializer<TimeoutRequest>;

// Gives a TimeoutRequest and the request it wraps one command line and one flat JSON object:
// the wrapped serializer and the limit's own each read the whole input and ignore what they
// don't know. On a command line the wrapped request is read first and written first; in JSON
// the limit is read first and merged in last. A request that is no TimeoutRequest is handed
// whole to the wrapped serializer, so this one also serves the wrapped service's own requests.
class EDITORSERVICE_EXPORT TimeoutRequestSerializer
    : public DefaultRequestSerializer<TimeoutRequest> {
public:
    // Wraps nothing: loading or saving through it dereferences the null wrapped serializer.
    TimeoutRequestSerializer();
    explicit TimeoutRequestSerializer(std::unique_ptr<AbstractRequestSerializer>&& wrapped);
    // Declared so that there is no assignment of either kind; the base part is copied.
    TimeoutRequestSerializer(TimeoutRequestSerializer&& other) noexcept = default;

    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override;
    std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) override;
    QStringList toCli(const Request& request) const override;
    nlohmann::json toJson(const Request& request) const override;

private:
    std::unique_ptr<AbstractRequestSerializer> wrapped;
};

} // namespace EditorService
