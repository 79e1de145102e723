#include "service/api/HelpException.h"

namespace EditorService::CLI {

HelpException::HelpException(const QString& helpText)
    : std::runtime_error(helpText.toStdString()) {}

HelpException::HelpException(const HelpException& other) = default;

HelpException::~HelpException() = default;

} // namespace EditorService::CLI
