#pragma once

#include "platform/content/ContentItem.h"

#include <QStringList>
#include <vector>

namespace PanAndZoom {

// Offers the ways a pan-and-zoom moves.
class ContentProvider {
public:
    ContentProvider();
    ContentProvider(const ContentProvider&) = delete;
    ContentProvider& operator=(const ContentProvider&) = delete;
    ~ContentProvider();

    // The names of the items offered, in display order.
    QStringList items() const;
    // The easings a pan-and-zoom moves with, exactly those the renderer draws: linear,
    // ease-in, ease-out, ease-in-out.
    const std::vector<Content::Item>& easings() const;
};

} // namespace PanAndZoom
