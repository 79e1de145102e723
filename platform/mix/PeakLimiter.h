#pragma once

#include "platform/mix/GainCurve.h"
#include "platform/mix/HopMeter.h"

namespace Mixing {

// The gains that raise a whole mix by `gainDb` and keep its true peaks at or below
// `ceilingDb` (dBTP), from what each hop of the mix reaches as it is. Where a hop would pass
// the ceiling, the gain at both its ends comes down by what it must; the gain falls towards
// such a hop by at most 6 dB a hop and rises after it by at most 1 dB a hop, so a peak is
// taken down smoothly and let go soon. What the limiting takes from the loudness, estimated on
// the hops' powers (those within 10 dB of their mean, as loudness gates its blocks), the gain
// gives back, by up to 6 dB more, limiting again as it must.
//
// Written by hand, as gains over the whole timeline fixed before anything renders:
// libavfilter's alimiter limits sample peaks, not true peaks, and loudnorm resamples to
// 192 kHz and turns to a dynamic gain; both carry a state from sample to sample, so a render
// that starts in the middle would sound otherwise than the whole one there.
GainCurve limitedGain(const HopLevels& levels, int hop, double gainDb, double ceilingDb);

} // namespace Mixing
