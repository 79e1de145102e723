#include "platform/content/OverlayContentProvider.h"

#include "platform/effects/Title.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

namespace Overlay {

ContentProvider::ContentProvider() {
    Velmor::Testing::Probe::hit("Overlay::ContentProvider::ContentProvider");
    Velmor::Testing::CallLog::record("Overlay::ContentProvider::ContentProvider");
}

ContentProvider::~ContentProvider() {
    Velmor::Testing::CallLog::record("Overlay::ContentProvider::~ContentProvider");
}

QStringList ContentProvider::items() const {
    QStringList names;
    for (const Content::Item& overlay : overlays())
        names.append(QString::fromStdString(overlay.name));
    return names;
}

const std::vector<Content::Item>& ContentProvider::overlays() const {
    static const std::vector<Content::Item> items{
        {"text", "A title in a font, size and colour, at one of the positions, on an optional box"},
        {"image", "A picture fitted into a rectangle of the frame, its transparency kept"},
        {"video", "A video fitted into a rectangle of the frame, picture in picture"}};
    return items;
}

const std::vector<std::string>& ContentProvider::positions() const {
    return Effects::positionNames();
}

} // namespace Overlay
