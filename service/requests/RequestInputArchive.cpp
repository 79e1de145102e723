#include "service/requests/RequestInputArchive.h"

#include "service/api/HelpException.h"

namespace EditorService::CLI {

RequestInputArchive::RequestInputArchive(QStringList arguments)
    : boost::archive::detail::common_iarchive<RequestInputArchive>(0)
    , arguments(std::move(arguments)) {}

RequestInputArchive::~RequestInputArchive() = default;

void RequestInputArchive::describe(const Request& request) {
    const QString description = request.description();
    if (!description.isEmpty())
        parser.setApplicationDescription(description);
}

void RequestInputArchive::parseArguments(const Request& request,
                                         const QList<QCommandLineOption>& options) {
    // Two fields may share an option name; both then read the same value.
    parser.addOptions(options);
    const QCommandLineOption helpOption = parser.addHelpOption();

    // The parser skips the first element as the program path.
    QStringList commandLine{QStringLiteral("app-path-stub")};
    commandLine.append(arguments);
    // Unknown options, stray positionals and missing values are not ours to reject: another
    // serializer may read the same list.
    parser.parse(commandLine);

    if (!parser.isSet(helpOption))
        return;
    QString help = parser.helpText();
    const QString additional = request.additionalHelp();
    if (!additional.isEmpty())
        help += QLatin1Char('\n') + additional;
    throw HelpException(help);
}

void RequestInputArchive::loadValue(bool& value) {
    value = isCurrentOptionSet();
}

bool RequestInputArchive::isCurrentOptionSet() const {
    return parser.isSet(optionStack.back());
}

QString RequestInputArchive::takeValueText() {
    if (!pendingValues.isEmpty())
        return pendingValues.takeFirst();
    return parser.value(optionStack.back());
}

void RequestInputArchive::vload(boost::archive::version_type&) {}
void RequestInputArchive::vload(boost::archive::object_id_type&) {}
void RequestInputArchive::vload(boost::archive::class_id_type&) {}
void RequestInputArchive::vload(boost::archive::class_id_optional_type&) {}
void RequestInputArchive::vload(boost::archive::tracking_type&) {}
void RequestInputArchive::vload(boost::archive::class_name_type&) {}

} // namespace EditorService::CLI
