#include "platform/editorlogic/ThumbnailTaskProvider.h"

namespace Thumbnail {

TaskProvider::~TaskProvider() = default;

} // namespace Thumbnail
