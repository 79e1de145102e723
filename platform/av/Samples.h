#pragma once

#include "platform/av/Frame.h"

namespace Velmor::AV {

// Operations on blocks of samples, for the stages that must not see FFmpeg's types.

// A frame that shows `count` samples of `block` from sample `skip` on: the same buffers (no
// copy), its timestamps and properties. Throws std::out_of_range "Samples <skip>+<count> are
// outside a block of <samples>" unless 0 <= skip and 0 <= count <= samples - skip.
Frame sliceSamples(const Frame& block, int skip, int count);

} // namespace Velmor::AV
