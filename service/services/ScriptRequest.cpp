#include "service/services/ScriptRequest.h"

#include "platform/serialize/QStringJson.h"
#include "service/api/HelpException.h"

#include <QCommandLineParser>
#include <stdexcept>

namespace EditorService {
namespace {

// Both keys must be there: a missing one raises out_of_range rather than taking a default,
// and a value that is no object raises type_error 305 from the const subscript.
const nlohmann::json& field(const nlohmann::json& value, const char* key) {
    if (value.is_object())
        return value.at(key);
    return value[key];
}

} // namespace

template struct DefaultRequestImpl<ScriptRequest>;

ScriptRequest::ScriptRequest(const QString& path, int jobs)
    : path(path)
    , jobs(jobs) {}

ScriptRequest::ScriptRequest(const ScriptRequest& other) = default;
ScriptRequest::ScriptRequest(ScriptRequest&& other) noexcept = default;
ScriptRequest& ScriptRequest::operator=(const ScriptRequest& other) = default;
ScriptRequest& ScriptRequest::operator=(ScriptRequest&& other) noexcept = default;
ScriptRequest::~ScriptRequest() = default;

const QCommandLineOption& ScriptRequest::jobsOption() {
    static const QCommandLineOption option(
        QStringList{QStringLiteral("jobs"), QStringLiteral("j")},
        QStringLiteral("Allow N jobs at once; 1 job with no arg, infinite with < 1"),
        QStringLiteral("N"), QStringLiteral("1"));
    return option;
}

int ScriptRequest::jobsFrom(const QStringList& arguments) {
    // A parser of the jobs option alone reads the count, so that the value a missing argument
    // leaves behind is the option's default.
    QCommandLineParser parser;
    parser.addOption(jobsOption());
    parser.parse(arguments);
    return parser.value(jobsOption()).toInt(nullptr, 10);
}

std::unique_ptr<Request> ScriptRequest::Serializer::loadFromCli(const QStringList& arguments) {
    QCommandLineParser parser;
    const QCommandLineOption helpOption = parser.addHelpOption();
    parser.setApplicationDescription(QStringLiteral("Execute commands from script"));
    parser.addPositionalArgument(QStringLiteral("script"), QStringLiteral("Path to script file"),
                                 QStringLiteral("<path>"));
    parser.addOption(jobsOption());
    parser.parse(arguments);
    if (parser.isSet(helpOption))
        throw CLI::HelpException(parser.helpText());
    const QStringList positional = parser.positionalArguments();
    if (positional.isEmpty())
        throw std::invalid_argument(
            "No script path specified, try --help for all avalable options");
    return std::make_unique<ScriptRequest>(positional.first(), jobsFrom(arguments));
}

std::unique_ptr<Request> ScriptRequest::Serializer::loadFromJson(const nlohmann::json& value) {
    const int jobs = field(value, "jobs").get<int>();
    QString path;
    from_json(field(value, "path"), path);
    return std::make_unique<ScriptRequest>(path, jobs);
}

QStringList ScriptRequest::Serializer::toCli(const Request& request) const {
    const auto& script = dynamic_cast<const ScriptRequest&>(request);
    return {QStringLiteral("app-path-stub"), script.path,
            QStringLiteral("--%1=%2").arg(jobsOption().names().first()).arg(script.jobs)};
}

nlohmann::json ScriptRequest::Serializer::toJson(const Request& request) const {
    const auto& script = dynamic_cast<const ScriptRequest&>(request);
    nlohmann::json value;
    to_json(value["path"], script.path);
    value["jobs"] = static_cast<nlohmann::json::number_integer_t>(script.jobs);
    return value;
}

} // namespace EditorService
