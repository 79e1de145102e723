#include "host/services/ContentRequest.h"

#include "media/MediaPath.h"
#include "service/api/Error.h"
#include "service/requests/OptionDumper.h"

namespace {

const char* const expected = "expects transitions, pan-zoom, overlays or themes";

} // namespace

QCommandLineOption ContentRequest::kindOption() {
    return QCommandLineOption(QStringLiteral("kind"),
                              QStringLiteral("What to list: transitions, pan-zoom, overlays or "
                                             "themes; may stand first without the option's name."),
                              QStringLiteral("kind"));
}

const QStringList& ContentRequest::kinds() {
    static const QStringList names{QStringLiteral("transitions"), QStringLiteral("pan-zoom"),
                                   QStringLiteral("overlays"), QStringLiteral("themes")};
    return names;
}

QString ContentRequest::description() const {
    return QStringLiteral("List what a project may name, one value per item: the transitions, "
                          "the pan-and-zoom easings, the overlays with the title positions, or "
                          "the themes with their defaults.");
}

void ContentRequest::validateOnLoad() const {
    if (kind.isEmpty())
        throw EditorService::Error(
            QStringLiteral("No content kind specified, %1").arg(expected).toStdString());
    if (!kinds().contains(kind))
        throw EditorService::Error(
            QStringLiteral("Unknown content \"%1\", %2").arg(kind, expected).toStdString());
}

std::unique_ptr<EditorService::Request>
ContentRequest::Serializer::loadFromCli(const QStringList& arguments) {
    ContentRequest fields;
    EditorService::CLI::OptionDumper dumper;
    dumper << fields;
    return DefaultRequestSerializer<ContentRequest>::loadFromCli(
        EditorService::withPathOption(arguments, dumper.options, kindOption()));
}
