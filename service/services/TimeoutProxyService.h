#pragma once

#include "service/api/AbstractService.h"

#include <QCommandLineOption>
#include <QList>
#include <functional>

namespace EditorService {

// Puts a service under a limit on silence. It takes the wrapped service's requests, plain or
// inside a TimeoutRequest, and passes the wrapped service's values through. When a limited
// request stays silent for its limit, `callback` is called with the wrapped request on the
// timer's own thread, and the stream fails with rxcpp::timeout_error.
//
// A limited request's values, end and error reach the subscriber on the main thread; a request
// without a limit (none, 0 or less) runs exactly as the wrapped service's own stream.
class EDITORSERVICE_EXPORT TimeoutProxyService : public AbstractService {
public:
    TimeoutProxyService(const std::shared_ptr<AbstractService>& service,
                        std::function<void(const Request&)> callback);

    // The one option the proxy adds to any service: TimeoutRequest::timeoutOption().
    static QList<QCommandLineOption> options();

    std::unique_ptr<AbstractRequestSerializer> requestSerializer() const override;
    using AbstractService::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override;

private:
    std::shared_ptr<AbstractService> service;
    std::function<void(const Request&)> callback;
};

} // namespace EditorService
