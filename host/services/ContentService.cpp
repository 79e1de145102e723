#include "host/services/ContentService.h"

#include "host/services/ListedValues.h"

#include "platform/content/OverlayContentProvider.h"
#include "platform/content/PanAndZoomContentProvider.h"
#include "platform/content/ThemeContentProvider.h"
#include "platform/content/TransitionContentProvider.h"

namespace {

using Values = std::vector<nlohmann::json>;

nlohmann::json named(const std::string& name, const std::string& description) {
    return {{"name", name}, {"description", description}};
}

Values transitions() {
    Values values;
    for (const auto& kind : Transition::ContentProvider().transitions())
        values.push_back({{"transition", named(kind.name, kind.description)}});
    return values;
}

Values easings() {
    Values values;
    for (const auto& easing : PanAndZoom::ContentProvider().easings())
        values.push_back({{"easing", named(easing.name, easing.description)}});
    return values;
}

Values overlays() {
    const Overlay::ContentProvider provider;
    Values values;
    for (const auto& overlay : provider.overlays()) {
        nlohmann::json item = named(overlay.name, overlay.description);
        if (overlay.name == "text")
            item["positions"] = provider.positions();
        values.push_back({{"overlay", item}});
    }
    return values;
}

Values themes() {
    Values values;
    for (const auto& theme : Theme::ContentProvider().themes()) {
        nlohmann::json item = named(theme.defaults.name, theme.description);
        if (theme.defaults.transition)
            item["transition"] = *theme.defaults.transition;
        if (theme.defaults.title)
            item["title"] = *theme.defaults.title;
        values.push_back({{"theme", item}});
    }
    return values;
}

Values itemsOf(const QString& kind) {
    if (kind == QLatin1String("transitions"))
        return transitions();
    if (kind == QLatin1String("pan-zoom"))
        return easings();
    if (kind == QLatin1String("overlays"))
        return overlays();
    return themes();
}

} // namespace

QString ContentService::serviceId() {
    return QStringLiteral("content");
}

rxcpp::observable<nlohmann::json>
ContentService::run(const rxcpp::observable<ContentRequest>& requests) {
    return requests
        .flat_map([](const ContentRequest& request) {
            const QString kind = request.kind;
            return listedValues([kind] { return itemsOf(kind); });
        })
        .as_dynamic();
}
