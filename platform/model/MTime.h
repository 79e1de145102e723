#pragma once

#include <cstdint>

// A point or a length of time on the editor's timeline, in milliseconds.
using MTime = std::int64_t;
