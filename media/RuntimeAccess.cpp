#include "media/RuntimeAccess.h"

#include "service/api/Error.h"

namespace EditorService {

void requireRuntime(GlobalContextProvider::GlobalContexts contexts) {
    GlobalContextProvider* provider = GlobalContextProvider::instance();
    if (!provider)
        throw Error("No runtime: the process has no GlobalContextProvider");
    provider->require(contexts);
}

} // namespace EditorService
