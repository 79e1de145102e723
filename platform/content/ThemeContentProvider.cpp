#include "platform/content/ThemeContentProvider.h"

#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"
#include "platform/package/PackageDirectory.h"
#include "platform/project/ClipReader.h"
#include "platform/project/ProjectError.h"

#include <QDir>
#include <QFile>
#include <mutex>

namespace Theme {
namespace {

std::optional<Item> readTheme(const QString& file) {
    QFile manifest(file);
    if (!manifest.open(QIODevice::ReadOnly))
        return std::nullopt;
    const auto document = nlohmann::json::parse(manifest.readAll().toStdString(), nullptr, false);
    if (!document.is_object() || !document.contains("theme"))
        return std::nullopt;
    const auto name = Package::readManifest(file);
    if (!name)
        return std::nullopt;
    const Project::JsonNode theme(document["theme"], "theme", file.toStdString());
    theme.allowOnly({"description", "transition", "title"});
    Item item;
    item.file = file;
    item.defaults.name = name->toStdString();
    if (const auto description = theme.find("description"))
        item.description = description->text();
    if (const auto transition = theme.find("transition")) {
        Project::readTransition(*transition);
        item.defaults.transition = transition->value();
    }
    if (const auto title = theme.find("title")) {
        Project::readTitleStyle(*title);
        item.defaults.title = title->value();
    }
    return item;
}

std::vector<Item> readThemes(const QString& directory) {
    std::vector<Item> themes;
    const QDir dir(directory);
    const QStringList files =
        dir.entryList({QStringLiteral("*.json")}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QString& file : files) {
        if (auto theme = readTheme(dir.filePath(file)))
            themes.push_back(std::move(*theme));
    }
    return themes;
}

} // namespace

class ContentProvider::Private {
public:
    std::once_flag read;
    std::vector<Item> themes;
    std::exception_ptr failure;

    const std::vector<Item>& loaded() {
        std::call_once(read, [this] {
            try {
                themes = readThemes(Package::packageDirectory());
            } catch (...) {
                failure = std::current_exception();
            }
        });
        if (failure)
            std::rethrow_exception(failure);
        return themes;
    }
};

ContentProvider::ContentProvider()
    : d(std::make_unique<Private>()) {
    Velmor::Testing::Probe::hit("Theme::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Theme::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Theme::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    QStringList names;
    for (const std::string& name : themeNames())
        names.append(QString::fromStdString(name));
    return names;
}

std::vector<Item> ContentProvider::themes() const {
    return d->loaded();
}

std::vector<std::string> ContentProvider::themeNames() const {
    std::vector<std::string> names;
    for (const Item& item : d->loaded())
        names.push_back(item.defaults.name);
    return names;
}

std::optional<Project::ThemeDefaults> ContentProvider::theme(const std::string& name) const {
    for (const Item& item : d->loaded()) {
        if (item.defaults.name == name)
            return item.defaults;
    }
    return std::nullopt;
}

} // namespace Theme
