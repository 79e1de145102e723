#pragma once

#include "host/services/EchoRequest.h"
#include "service/requests/DefaultServiceImpl.h"

// Emits one value, {"echo": [arguments...]}, per request, then completes.
class EchoService : public EditorService::DefaultServiceImpl<EchoRequest> {
public:
    static QString serviceId();

    using DefaultServiceImpl<EchoRequest>::run;
    rxcpp::observable<nlohmann::json> run(const rxcpp::observable<EchoRequest>& requests) override;
};
