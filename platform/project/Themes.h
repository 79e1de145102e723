#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace Project {

// What a theme fills into a project before it is validated, as a project file writes it: a
// transition object (`"type"`, `"duration_ms"`) and a title style object (`"font"`, `"size"`,
// `"color"`, `"position"`, `"background"`, `"fade_in_ms"`, `"fade_out_ms"`).
struct ThemeDefaults {
    std::string name;
    std::optional<nlohmann::json> transition;
    std::optional<nlohmann::json> title;
};

// The themes a project may name.
class IThemes {
public:
    IThemes() = default;
    IThemes(const IThemes&) = delete;
    IThemes& operator=(const IThemes&) = delete;
    virtual ~IThemes();

    // In the order users see them.
    virtual std::vector<std::string> themeNames() const = 0;
    // The theme of a name, compared with case; empty for any other.
    virtual std::optional<ThemeDefaults> theme(const std::string& name) const = 0;
};

// No themes at all.
class NoThemes : public IThemes {
public:
    std::vector<std::string> themeNames() const override { return {}; }
    std::optional<ThemeDefaults> theme(const std::string&) const override { return std::nullopt; }
};

// Fills a theme into a project document: its transition into every clip of the video tracks
// but the first that has no "transition" key (a null one keeps the clip without), its title
// style's keys into the "style" of every text overlay that lacks them. Parts of the document of
// the wrong type are left as they are, for reading to report.
void applyTheme(nlohmann::json& document, const ThemeDefaults& theme);

} // namespace Project
