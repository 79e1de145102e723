#pragma once

#include "tests/support/Collect.h"

#include <exception>
#include <string>

namespace EditorService::Testing {

// Moved to tests/support/Collect.h; this header and errorText stay only while
// tests/media/ExportServiceTest.cpp still includes them (failureText replaces errorText).
inline std::string errorText(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const std::exception& exception) {
        return exception.what();
    }
}

} // namespace EditorService::Testing
