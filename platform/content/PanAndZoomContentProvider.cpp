#include "platform/content/PanAndZoomContentProvider.h"

#include "platform/effects/Easing.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace PanAndZoom {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("PanAndZoom::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("PanAndZoom::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("PanAndZoom::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    QStringList names;
    for (const Content::Item& easing : easings())
        names.append(QString::fromStdString(easing.name));
    return names;
}

const std::vector<Content::Item>& ContentProvider::easings() const {
    static const std::vector<Content::Item> items = [] {
        const char* descriptions[] = {"Moves steadily from start to end",
                                      "Starts at rest and speeds up",
                                      "Slows down to rest at the end", "Starts and ends at rest"};
        std::vector<Content::Item> made;
        for (std::size_t index = 0; index < Effects::easingNames().size(); ++index)
            made.push_back({Effects::easingNames()[index], descriptions[index]});
        return made;
    }();
    return items;
}

} // namespace PanAndZoom
