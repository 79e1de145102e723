#pragma once

#include "platform/av/Frame.h"
#include "platform/mix/GainCurve.h"
#include "platform/project/Edit.h"

#include <cstdint>
#include <deque>

namespace Mixing {

// Side-chain ducking over the whole timeline: reads the video track's sound (the side-chain)
// from the project's start to its end and writes the gains that lower a track by `amount_db`
// while the side-chain is above `threshold_db`. The side-chain's level is its mean power over
// the last 50 ms; once it crosses the threshold the gain moves to the duck's level in
// `attack_ms`, and back to unity in `release_ms` once it has fallen below, as straight lines in
// decibels. A gain is written at the end of each hop of the curve.
//
// Written by hand: libavfilter's sidechaincompress lowers a track by how far the side-chain is
// above its threshold (its ratio), and sidechaingate lowers it while the side-chain is below;
// neither lowers by a fixed amount while the side-chain is above, and both smooth the level
// they detect rather than the gain, so attack and release would not shape the duck itself.
class Ducker {
public:
    // Writes into `curve`, whose hop it keeps, starting at unity.
    Ducker(const Project::Duck& duck, int sampleRate, GainCurve& curve);

    // The side-chain's next samples (planar float), from the project's start on.
    void feed(const Velmor::AV::Frame& sideChain);
    // Ends the side-chain: a last, shorter hop writes its gain too.
    void finish();

private:
    void endHop();

    GainCurve& curve;
    const double thresholdDb;
    const double amountDb;
    // How far the gain may move in one hop, in decibels.
    double attackStep;
    double releaseStep;
    // The power of the hop being read, and of the last hops of the level's window.
    double power = 0;
    std::int64_t counted = 0;
    std::deque<std::pair<double, std::int64_t>> window;
    std::size_t windowHops = 1;
    double gainDb = 0;
};

} // namespace Mixing
