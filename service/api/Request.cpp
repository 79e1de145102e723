#include "service/api/Request.h"

#include "service/api/AbstractRequestSerializer.h"

namespace EditorService {

Request::~Request() = default;

void Request::validateOnLoad() const {}

QString Request::description() const {
    return {};
}

QString Request::additionalHelp() const {
    return {};
}

} // namespace EditorService
