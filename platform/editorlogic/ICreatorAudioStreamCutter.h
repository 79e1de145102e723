#pragma once

#include <QString>

namespace Media {

class ICreatorAudioStreamCutter {
public:
    ICreatorAudioStreamCutter() = default;
    ICreatorAudioStreamCutter(const ICreatorAudioStreamCutter&) = delete;
    ICreatorAudioStreamCutter& operator=(const ICreatorAudioStreamCutter&) = delete;
    virtual ~ICreatorAudioStreamCutter();

    // Names the cutter for an audio stream of the given codec.
    virtual QString audioStreamCutterFor(const QString& codec) const = 0;
};

} // namespace Media
