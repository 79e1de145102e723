#include "platform/editorlogic/IRedirectionTableHolder.h"

namespace Resource {

IRedirectionTableHolder::~IRedirectionTableHolder() = default;

} // namespace Resource
