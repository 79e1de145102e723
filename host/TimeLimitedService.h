#pragma once

#include "service/api/AbstractService.h"

#include <QString>
#include <functional>

// Puts a service of the host behind a TimeoutProxyService, so that "--timeout" works for
// every service, on the host's command line and inside scripts. Each request gets a proxy of
// its own, whose callback knows that request's limit, so the report can name it.
class TimeLimitedService : public EditorService::AbstractService {
public:
    using Expiry = std::function<void(int seconds, const QString& commandLine)>;

    TimeLimitedService(QString serviceName, std::shared_ptr<EditorService::AbstractService> service,
                       Expiry expiry);

    std::unique_ptr<EditorService::AbstractRequestSerializer> requestSerializer() const override;
    using AbstractService::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<EditorService::Request>>& requests) override;

private:
    QString serviceName;
    std::shared_ptr<EditorService::AbstractService> service;
    Expiry expiry;
};
