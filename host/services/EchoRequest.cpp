#include "host/services/EchoRequest.h"

#include "platform/serialize/QStringJson.h"
#include "service/api/HelpException.h"

using namespace EditorService;

std::unique_ptr<Request> EchoRequest::Serializer::loadFromCli(const QStringList& arguments) {
    auto request = std::make_unique<EchoRequest>();
    request->arguments = arguments.mid(1);
    if (request->arguments == QStringList{QStringLiteral("--help")}) {
        throw CLI::HelpException(QStringLiteral(
            "Usage: reelsmith echo [arguments...]\n"
            "Emits the arguments it was given, in order and unchanged, as one value:\n"
            "{\"echo\": [arguments...]}\n"));
    }
    return request;
}

std::unique_ptr<Request> EchoRequest::Serializer::loadFromJson(const nlohmann::json& value) {
    auto request = std::make_unique<EchoRequest>();
    for (const auto& argument : value.at("arguments"))
        request->arguments.append(argument.get<QString>());
    return request;
}

QStringList EchoRequest::Serializer::toCli(const Request& request) const {
    return QStringList(QStringLiteral("app-path-stub"))
           + dynamic_cast<const EchoRequest&>(request).arguments;
}

nlohmann::json EchoRequest::Serializer::toJson(const Request& request) const {
    return {{"arguments", dynamic_cast<const EchoRequest&>(request).arguments}};
}
