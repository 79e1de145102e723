#pragma once

#include <QStringList>

namespace PanAndZoom {

// Offers the pan-and-zoom presets.
class ContentProvider {
public:
    ContentProvider();
    ContentProvider(const ContentProvider&) = delete;
    ContentProvider& operator=(const ContentProvider&) = delete;
    ~ContentProvider();

    // The names of the items offered, in display order.
    QStringList items() const;
};

} // namespace PanAndZoom
