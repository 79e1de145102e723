#pragma once

#include <string>
#include <vector>

namespace Velmor::AV {

// The libavfilter filters that titles and the audio mix are made with, each found by asking the
// library. Throws MediaError "The media libraries have no filter <name>" for the first one it
// lacks.
std::vector<std::string> findEffectFilters();

} // namespace Velmor::AV
