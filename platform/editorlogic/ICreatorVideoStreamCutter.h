#pragma once

#include <QString>

namespace Media {

class ICreatorVideoStreamCutter {
public:
    ICreatorVideoStreamCutter() = default;
    ICreatorVideoStreamCutter(const ICreatorVideoStreamCutter&) = delete;
    ICreatorVideoStreamCutter& operator=(const ICreatorVideoStreamCutter&) = delete;
    virtual ~ICreatorVideoStreamCutter();

    // Names the cutter for a video stream of the given codec.
    virtual QString videoStreamCutterFor(const QString& codec) const = 0;
};

} // namespace Media
