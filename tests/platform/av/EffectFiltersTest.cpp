#include "platform/av/EffectFilters.h"

#include <gtest/gtest.h>

using namespace Velmor::AV;

namespace {

TEST(EffectFiltersTest, TheLibrariesHaveEveryFilterOfTitlesAndTheMix) {
    const std::vector<std::string> filters = findEffectFilters();
    for (const char* name : {"drawtext", "volume", "afade", "ebur128", "aresample"})
        EXPECT_NE(std::find(filters.begin(), filters.end(), name), filters.end()) << name;
}

} // namespace
