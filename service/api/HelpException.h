#pragma once

#include "service/api/EditorServiceExport.h"

#include <QString>
#include <stdexcept>

namespace EditorService::CLI {

// Stops the loading of a request because help was asked for; what() is the whole help text.
// It is no fault: the host prints the text and ends successfully.
class EDITORSERVICE_EXPORT HelpException : public std::runtime_error {
public:
    explicit HelpException(const QString& helpText);
    HelpException(const HelpException& other);
    ~HelpException() override;
};

} // namespace EditorService::CLI
