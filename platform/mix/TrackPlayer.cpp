#include "platform/mix/TrackPlayer.h"

#include "platform/mix/VoicePlayer.h"

#include <map>

namespace Mixing {

class TrackPlayer::Private {
public:
    Private(std::vector<Voice> voices, ISoundReaders& readers, Velmor::AV::AudioShape shape)
        : voices(std::move(voices))
        , readers(readers)
        , shape(shape) {}

    const std::vector<Voice> voices;
    ISoundReaders& readers;
    const Velmor::AV::AudioShape shape;
    std::map<std::size_t, std::unique_ptr<VoicePlayer>> players;
};

TrackPlayer::TrackPlayer(std::vector<Voice> voices, ISoundReaders& readers,
                         Velmor::AV::AudioShape shape)
    : d(std::make_unique<Private>(std::move(voices), readers, shape)) {}

TrackPlayer::~TrackPlayer() = default;

void TrackPlayer::addTo(Velmor::AV::Frame& block, std::int64_t at) {
    const std::int64_t end = at + block.samples();
    for (std::size_t index = 0; index < d->voices.size(); ++index) {
        const Voice& voice = d->voices[index];
        const bool sounds = voice.start < end && voice.end > at;
        if (!sounds) {
            d->players.erase(index);
            continue;
        }
        auto& player = d->players[index];
        if (!player)
            player = std::make_unique<VoicePlayer>(voice, d->readers, d->shape);
        player->addTo(block, at);
    }
}

int TrackPlayer::playing() const {
    return static_cast<int>(d->players.size());
}

} // namespace Mixing
