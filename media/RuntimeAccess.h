#pragma once

#include "service/contexts/GlobalContextProvider.h"

namespace EditorService {

// Starts the contexts through the process's provider, on the calling thread, and returns once
// they are up. Throws Error "No runtime: the process has no GlobalContextProvider" without one.
void requireRuntime(GlobalContextProvider::GlobalContexts contexts);

} // namespace EditorService
