#pragma once

#include <QStringList>

namespace Animation {

// Offers the text and object animations.
class ContentProvider {
public:
    ContentProvider();
    ContentProvider(const ContentProvider&) = delete;
    ContentProvider& operator=(const ContentProvider&) = delete;
    ~ContentProvider();

    // The names of the items offered, in display order.
    QStringList items() const;
};

} // namespace Animation
