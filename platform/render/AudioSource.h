#pragma once

#include "platform/render/AudioFormat.h"
#include "platform/render/Source.h"

namespace Velmor::Render {

// Blocks of samples of format(), one after another without gaps or overlaps, timed in
// 1/format().sampleRate from 0 of the output: the first block is at the output time of its first
// sample (later than 0 when the sound begins after the picture, never before), and each block
// follows the one before it.
using AudioSource = Source<AudioFormat>;

} // namespace Velmor::Render
