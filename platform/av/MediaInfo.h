#pragma once

// The values a demuxer tells of a file live without the media libraries; included here for code
// that knows them as the media stages'.
#include "platform/mediatypes/MediaInfo.h"
