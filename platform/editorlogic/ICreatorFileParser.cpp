#include "platform/editorlogic/ICreatorFileParser.h"

namespace Media {

ICreatorFileParser::~ICreatorFileParser() = default;

} // namespace Media
