#pragma once

#include "platform/project/Themes.h"

#include <QString>
#include <QStringList>
#include <memory>

namespace Theme {

// One theme: a package whose manifest holds, beside its "name", a "theme" object with a
// "description", a default "transition" and a "title" style, as a project file writes them:
//     {"name": "Classic", "theme": {"description": "...",
//      "transition": {"type": "fade", "duration_ms": 500},
//      "title": {"font": "DejaVu Sans", "color": "#ffffff", "position": "bottom-center"}}}
struct Item {
    Project::ThemeDefaults defaults;
    std::string description;
    // The manifest the theme was read from.
    QString file;
};

// Offers the project themes: the theme packages of the package directory (the one set when the
// themes are first asked for), read once, in file name order. A project names a theme by its
// name. Safe to ask from any thread.
class ContentProvider : public Project::IThemes {
public:
    ContentProvider();
    ContentProvider(const ContentProvider&) = delete;
    ContentProvider& operator=(const ContentProvider&) = delete;
    ~ContentProvider() override;

    // The names of the items offered, in display order.
    QStringList items() const;
    // Throws Project::ProjectError "<manifest>: <place>: <reason>" for a theme package whose
    // transition or title a project could not hold, as a project's messages say it.
    std::vector<Item> themes() const;

    std::vector<std::string> themeNames() const override;
    std::optional<Project::ThemeDefaults> theme(const std::string& name) const override;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Theme
