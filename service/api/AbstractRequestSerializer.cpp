#include "service/api/AbstractRequestSerializer.h"

namespace EditorService {

AbstractRequestSerializer::~AbstractRequestSerializer() = default;

} // namespace EditorService
