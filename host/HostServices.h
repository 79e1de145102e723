#pragma once

#include "host/TimeLimitedService.h"

#include <memory>
#include <vector>

namespace EditorService {
class ServiceLoader;
}

// The host's loaders, outermost first, each holding the host's services behind a time limit that
// reports an expiry to `expiry`. The commands of a script come from the next loader, so that a
// script that runs itself ends with Error "Scripts nest deeper than 16 levels" instead of
// growing without bound: the last loader's script service fails.
std::vector<std::shared_ptr<EditorService::ServiceLoader>>
makeHostLoaders(const TimeLimitedService::Expiry& expiry);
