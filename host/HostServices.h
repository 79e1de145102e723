#pragma once

#include "host/TimeLimitedService.h"

namespace EditorService {
class ServiceLoader;
}

// Fills the loader with the host's services, each behind a time limit that reports an expiry
// to `expiry`.
void registerHostServices(EditorService::ServiceLoader& loader,
                          const TimeLimitedService::Expiry& expiry);
