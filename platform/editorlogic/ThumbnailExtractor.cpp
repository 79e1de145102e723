#include "platform/editorlogic/ThumbnailExtractor.h"

namespace Thumbnail {

Extractor::~Extractor() = default;

} // namespace Thumbnail
