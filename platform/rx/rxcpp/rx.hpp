#pragma once

#include "rx-lite.hpp"
