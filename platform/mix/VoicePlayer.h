#pragma once

#include "platform/av/AudioBlock.h"
#include "platform/av/Frame.h"
#include "platform/mix/MixPlan.h"
#include "platform/mix/SoundReader.h"

#include <cstdint>
#include <memory>

namespace Mixing {

// Plays one voice onto the output's samples: its file from in_ms on, again from in_ms at each
// period when it loops, at its gain and with its fades, which libavfilter's volume and afade
// apply by each sample's time alone. A reader is opened for each play; blocks that follow one
// another read on, any other block opens the play it falls in and passes over its start.
// One thread at a time.
class VoicePlayer {
public:
    VoicePlayer(Voice voice, ISoundReaders& readers, Velmor::AV::AudioShape shape);
    ~VoicePlayer();

    const Voice& voice() const;
    // Adds the voice's samples of [at, at + block's samples) to the planar float block.
    void addTo(Velmor::AV::Frame& block, std::int64_t at);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Mixing
