#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Request.h"

#include <QStringList>
#include <memory>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace EditorService {

// A service: a stream of requests in, a stream of JSON values out.
//
// A service made by the loader may be released the moment run() has returned, so the stream
// it returns holds by itself all that it needs and never refers to the service object.
class EDITORSERVICE_EXPORT AbstractService {
public:
    AbstractService() = default;
    AbstractService(const AbstractService&) = default;
    AbstractService& operator=(const AbstractService&) = default;
    virtual ~AbstractService();

    // A new serializer for the requests this service understands, owned by the caller. The
    // base version throws Error: a service that takes requests from outside overrides it.
    virtual std::unique_ptr<AbstractRequestSerializer> requestSerializer() const;
    virtual rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) = 0;

    // Loads a request from a command line (program path first) through requestSerializer()
    // and runs it. A load failure, CLI::HelpException included, never leaves this call: it is
    // the error of the returned stream, the same way for every service.
    rxcpp::observable<nlohmann::json> run(const QStringList& arguments);
    // Runs the service on a stream of exactly this one request.
    rxcpp::observable<nlohmann::json> run(const std::shared_ptr<Request>& request);
};

} // namespace EditorService
