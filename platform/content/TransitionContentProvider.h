#pragma once

#include "platform/effects/TransitionCatalog.h"

#include <QStringList>
#include <vector>

namespace Transition {

// Offers the transitions, exactly those the renderer draws.
class ContentProvider {
public:
    ContentProvider();
    ContentProvider(const ContentProvider&) = delete;
    ContentProvider& operator=(const ContentProvider&) = delete;
    ~ContentProvider();

    // The names of the items offered, in display order.
    QStringList items() const;
    // Each with what it looks like, in display order.
    const std::vector<Effects::TransitionKind>& transitions() const;
};

} // namespace Transition
