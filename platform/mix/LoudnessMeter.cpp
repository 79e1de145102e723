#include "platform/mix/LoudnessMeter.h"

#include "platform/av/AudioFilterChain.h"

#include <QString>
#include <string>

namespace Mixing {
namespace {

// ebur128 sets no loudness below its absolute gate.
constexpr double silentLufs = -70;

} // namespace

class LoudnessMeter::Private {
public:
    Private(int sampleRate, int channels)
        : chain({Velmor::AV::planarFloat(), sampleRate, channels},
                {{"ebur128", {{"metadata", "1"}}}}, {}) {}

    void drain() {
        Velmor::AV::Frame measured;
        while (chain.pull(measured)) {
            const std::string integrated = Velmor::AV::metadataOf(measured, "lavfi.r128.I");
            if (!integrated.empty())
                loudness = QString::fromStdString(integrated).toDouble();
        }
    }

    Velmor::AV::AudioFilterChain chain;
    double loudness = silentLufs;
};

LoudnessMeter::LoudnessMeter(int sampleRate, int channels)
    : d(std::make_unique<Private>(sampleRate, channels)) {}

LoudnessMeter::~LoudnessMeter() = default;

void LoudnessMeter::add(const Velmor::AV::Frame& block) {
    d->chain.push(block);
    d->drain();
}

double LoudnessMeter::finish() {
    d->chain.close();
    d->drain();
    return d->loudness;
}

} // namespace Mixing
