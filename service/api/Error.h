#pragma once

#include "service/api/EditorServiceExport.h"

#include <exception>
#include <string>

namespace EditorService {

// The exception for bad values and unusable options. Messages are formed as QString and
// converted with toStdString, so what() is UTF-8.
class EDITORSERVICE_EXPORT Error : public std::exception {
public:
    explicit Error(const std::string& message);
    Error(const Error& other);
    ~Error() override;

    const char* what() const noexcept override;

private:
    std::string message;
};

} // namespace EditorService
