#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/Request.h"

#include <QCommandLineOption>
#include <QList>
#include <QStringList>

namespace EditorService {

// A command: one service to run, and the arguments for it.
struct EDITORSERVICE_EXPORT ServiceRunRequest : Request {
    class Serializer;

    ServiceRunRequest() = default;
    ServiceRunRequest(QString serviceName, QStringList arguments);
    ServiceRunRequest(const ServiceRunRequest& other);
    ServiceRunRequest(ServiceRunRequest&& other) noexcept;
    ServiceRunRequest& operator=(const ServiceRunRequest& other);
    ServiceRunRequest& operator=(ServiceRunRequest&& other) noexcept;
    ~ServiceRunRequest() override;

    std::unique_ptr<AbstractRequestSerializer> serializer() const override;

    // Splits one command line into the service's name and the arguments for it:
    // - the first item is the program path, and stays at the head of `arguments`;
    // - options of `options` may stand before the service name, with their values, in any
    //   form QCommandLineParser reads; any other item that starts with "-" is skipped there as
    //   a flag, and a lone "--" ends the options;
    // - the first other item is the service name, and all that follows it is the service's.
    // Throws Error "No service specified" when no item names a service.
    static ServiceRunRequest fromCli(const QStringList& commandLine,
                                     const QList<QCommandLineOption>& options);

    QString serviceName;
    QStringList arguments;
};

// The command line of a ServiceRunRequest is program path, service name, service arguments;
// its JSON form is {"service": name, "arguments": [program path, service arguments...]}.
class EDITORSERVICE_EXPORT ServiceRunRequest::Serializer : public AbstractRequestSerializer {
public:
    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override;
    std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) override;
    QStringList toCli(const Request& request) const override;
    nlohmann::json toJson(const Request& request) const override;
};

} // namespace EditorService
