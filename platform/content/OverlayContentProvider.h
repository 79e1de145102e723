#pragma once

#include "platform/content/ContentItem.h"

#include <QStringList>
#include <vector>

namespace Overlay {

// Offers the overlays, exactly those the renderer draws.
class ContentProvider {
public:
    ContentProvider();
    ContentProvider(const ContentProvider&) = delete;
    ContentProvider& operator=(const ContentProvider&) = delete;
    ~ContentProvider();

    // The names of the items offered, in display order.
    QStringList items() const;
    // The kinds of overlay the renderer draws: text, image, video.
    const std::vector<Content::Item>& overlays() const;
    // Where a title may stand: top-left to bottom-right, row by row.
    const std::vector<std::string>& positions() const;
};

} // namespace Overlay
