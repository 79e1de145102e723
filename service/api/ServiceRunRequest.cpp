#include "service/api/ServiceRunRequest.h"

#include "service/api/Error.h"

namespace EditorService {
namespace {

bool takesValue(const QString& name, const QList<QCommandLineOption>& options) {
    for (const auto& option : options) {
        if (option.names().contains(name))
            return !option.valueName().isEmpty();
    }
    return false;
}

// The index of the service name in a command line, or -1 when there is none. Items in front
// of it are options in one of QCommandLineParser's forms: "--name=value", "--name value",
// "-n value", "-nvalue"; unknown ones count as flags.
int serviceNameIndex(const QStringList& commandLine, const QList<QCommandLineOption>& options) {
    for (int index = 1; index < commandLine.size(); ++index) {
        const QString& item = commandLine.at(index);
        if (item == QLatin1String("--"))
            return index + 1 < commandLine.size() ? index + 1 : -1;
        if (!item.startsWith(QLatin1Char('-')) || item == QLatin1String("-"))
            return index;
        const bool isLong = item.startsWith(QLatin1String("--"));
        const QString name = isLong ? item.mid(2).section(QLatin1Char('='), 0, 0) : item.mid(1, 1);
        const bool valueJoined = isLong ? item.contains(QLatin1Char('=')) : item.size() > 2;
        if (!valueJoined && takesValue(name, options))
            ++index;
    }
    return -1;
}

} // namespace

ServiceRunRequest::ServiceRunRequest(QString serviceName, QStringList arguments)
    : serviceName(std::move(serviceName))
    , arguments(std::move(arguments)) {}

ServiceRunRequest::ServiceRunRequest(const ServiceRunRequest& other) = default;
ServiceRunRequest::ServiceRunRequest(ServiceRunRequest&& other) noexcept = default;
ServiceRunRequest& ServiceRunRequest::operator=(const ServiceRunRequest& other) = default;
ServiceRunRequest& ServiceRunRequest::operator=(ServiceRunRequest&& other) noexcept = default;
ServiceRunRequest::~ServiceRunRequest() = default;

std::unique_ptr<AbstractRequestSerializer> ServiceRunRequest::serializer() const {
    return std::make_unique<Serializer>();
}

ServiceRunRequest ServiceRunRequest::fromCli(const QStringList& commandLine,
                                             const QList<QCommandLineOption>& options) {
    const int index = serviceNameIndex(commandLine, options);
    if (index < 0)
        throw Error(QStringLiteral("No service specified").toStdString());
    // One list, built in place: the program path, then what follows the service's name.
    QStringList arguments;
    arguments.reserve(commandLine.size() - index);
    arguments.append(commandLine.first());
    for (int item = index + 1; item < commandLine.size(); ++item)
        arguments.append(commandLine.at(item));
    return ServiceRunRequest(commandLine.at(index), std::move(arguments));
}

std::unique_ptr<Request> ServiceRunRequest::Serializer::loadFromCli(const QStringList& arguments) {
    return std::make_unique<ServiceRunRequest>(fromCli(arguments, {}));
}

std::unique_ptr<Request> ServiceRunRequest::Serializer::loadFromJson(const nlohmann::json& value) {
    QStringList arguments;
    for (const auto& argument : value.at("arguments"))
        arguments.append(QString::fromStdString(argument.get<std::string>()));
    return std::make_unique<ServiceRunRequest>(
        QString::fromStdString(value.at("service").get<std::string>()), arguments);
}

QStringList ServiceRunRequest::Serializer::toCli(const Request& request) const {
    const auto& command = dynamic_cast<const ServiceRunRequest&>(request);
    const QString programPath =
        command.arguments.isEmpty() ? QStringLiteral("app-path-stub") : command.arguments.first();
    return QStringList{programPath, command.serviceName} + command.arguments.mid(1);
}

nlohmann::json ServiceRunRequest::Serializer::toJson(const Request& request) const {
    const auto& command = dynamic_cast<const ServiceRunRequest&>(request);
    auto arguments = nlohmann::json::array();
    for (const auto& argument : command.arguments)
        arguments.push_back(argument.toStdString());
    return {{"service", command.serviceName.toStdString()}, {"arguments", arguments}};
}

} // namespace EditorService
