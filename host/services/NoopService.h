#pragma once

#include "service/requests/DefaultRequestImpl.h"
#include "service/requests/DefaultRequestSerializer.h"
#include "service/requests/DefaultServiceImpl.h"

// A request with no fields.
struct NoopRequest : EditorService::DefaultRequestImpl<NoopRequest> {
    using Serializer = EditorService::DefaultRequestSerializer<NoopRequest>;

    QString description() const override;

    template <class Archive> void serialize(Archive&, const unsigned int) {
        if constexpr (Archive::is_loading::value)
            validateOnLoad();
    }
};

// Emits one value, {"noop": true}, per request on the calling thread, then completes: the
// cost of the plumbing alone.
class NoopService : public EditorService::DefaultServiceImpl<NoopRequest> {
public:
    static QString serviceId();

    using DefaultServiceImpl<NoopRequest>::run;
    rxcpp::observable<nlohmann::json> run(const rxcpp::observable<NoopRequest>& requests) override;
};
