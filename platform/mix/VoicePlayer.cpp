#include "platform/mix/VoicePlayer.h"

#include "platform/av/AudioFilterChain.h"

#include <algorithm>
#include <optional>
#include <sstream>

namespace Mixing {
namespace {

using Velmor::AV::FilterStep;
using Velmor::AV::Frame;

std::string decimal(double value) {
    std::ostringstream text;
    text.imbue(std::locale::classic());
    text.precision(17);
    text << value;
    return text.str();
}

FilterStep fadeFilter(const Fade& fade, const char* type) {
    return {"afade",
            {{"type", type},
             {"start_sample", std::to_string(fade.start)},
             {"nb_samples", std::to_string(fade.length)},
             {"curve", fade.curve == Fade::Curve::EqualPower ? "qsin" : "tri"}}};
}

std::vector<FilterStep> voiceFilters(const Voice& voice) {
    std::vector<FilterStep> filters{{"volume", {{"volume", decimal(voice.gainDb) + "dB"}}}};
    if (voice.fadeIn)
        filters.push_back(fadeFilter(*voice.fadeIn, "in"));
    if (voice.fadeOut)
        filters.push_back(fadeFilter(*voice.fadeOut, "out"));
    return filters;
}

} // namespace

class VoicePlayer::Private {
public:
    Private(Voice voice, ISoundReaders& readers, Velmor::AV::AudioShape shape)
        : voice(std::move(voice))
        , readers(readers)
        , shape(shape)
        , chain(shape, voiceFilters(this->voice), shape) {}

    // The play that sample `at` falls in: its first sample.
    std::int64_t playOf(std::int64_t at) const {
        if (voice.period <= 0)
            return voice.start;
        return voice.start + (at - voice.start) / voice.period * voice.period;
    }

    std::int64_t playEnd() const {
        return voice.period > 0 ? std::min(play + voice.period, voice.end) : voice.end;
    }

    void openPlayAt(std::int64_t at) {
        play = playOf(at);
        reader = readers.open(voice.file, voice.inMs, shape);
        reader->skip(at - play);
        position = at;
    }

    // Reads [position, position + count) of one play, through the filters into the block.
    void playInto(Frame& block, std::int64_t blockStart, int count) {
        Frame part = Velmor::AV::silentBlock(shape.sampleRate, shape.channels, count);
        reader->read(part, 0, count);
        part.setTimestamp(position);
        chain.push(part);
        Frame filtered;
        while (chain.pull(filtered)) {
            // volume and afade give each block back at once, at its own time.
            Velmor::AV::addSamples(block, filtered,
                                   static_cast<int>(filtered.timestamp() - blockStart));
        }
        position += count;
    }

    const Voice voice;
    ISoundReaders& readers;
    const Velmor::AV::AudioShape shape;
    Velmor::AV::AudioFilterChain chain;
    std::unique_ptr<ISoundReader> reader;
    // The first sample of the play the reader reads, and the next sample it gives.
    std::int64_t play = 0;
    std::int64_t position = -1;
};

VoicePlayer::VoicePlayer(Voice voice, ISoundReaders& readers, Velmor::AV::AudioShape shape)
    : d(std::make_unique<Private>(std::move(voice), readers, shape)) {}

VoicePlayer::~VoicePlayer() = default;

const Voice& VoicePlayer::voice() const {
    return d->voice;
}

void VoicePlayer::addTo(Frame& block, std::int64_t at) {
    const std::int64_t from = std::max(at, d->voice.start);
    const std::int64_t to = std::min(at + block.samples(), d->voice.end);
    if (from >= to)
        return;
    if (!d->reader || d->position != from)
        d->openPlayAt(from);
    while (d->position < to) {
        if (d->position == d->playEnd())
            d->openPlayAt(d->position);
        const std::int64_t count = std::min(to, d->playEnd()) - d->position;
        d->playInto(block, at, static_cast<int>(count));
    }
}

} // namespace Mixing
