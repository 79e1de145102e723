#include "service/contexts/AbstractContext.h"

namespace EditorService {

AbstractContext::AbstractContext()
    : QObject(nullptr) {}

AbstractContext::~AbstractContext() = default;

} // namespace EditorService
