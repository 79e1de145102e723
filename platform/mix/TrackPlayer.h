#pragma once

#include "platform/av/AudioBlock.h"
#include "platform/av/Frame.h"
#include "platform/mix/MixPlan.h"
#include "platform/mix/SoundReader.h"

#include <cstdint>
#include <memory>

namespace Mixing {

// Plays the voices of one track, added up: a player for each voice that sounds in a block,
// let go once its voice has ended, so that memory stays flat over a long project. Blocks come
// in order of time. One thread at a time.
class TrackPlayer {
public:
    // The readers are borrowed and must outlive the player.
    TrackPlayer(std::vector<Voice> voices, ISoundReaders& readers, Velmor::AV::AudioShape shape);
    ~TrackPlayer();

    // Adds the track's samples of [at, at + block's samples) to the planar float block.
    void addTo(Velmor::AV::Frame& block, std::int64_t at);
    // How many voices have a player now.
    int playing() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Mixing
