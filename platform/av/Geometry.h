#pragma once

// Sizes and rectangles live without the media libraries; included here for code that knows them
// as the media stages'.
#include "platform/mediatypes/Geometry.h"
