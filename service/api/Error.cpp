#include "service/api/Error.h"

namespace EditorService {

Error::Error(const std::string& message)
    : message(message) {}

Error::Error(const Error& other) = default;

Error::~Error() = default;

const char* Error::what() const noexcept {
    return message.c_str();
}

} // namespace EditorService
