#pragma once

#include "platform/av/Frame.h"

#include <QString>
#include <cstdint>
#include <memory>

namespace Composition {

// Gives the decoded pictures of one media file at the times asked for, in any order.
class IFrameReader {
public:
    IFrameReader() = default;
    IFrameReader(const IFrameReader&) = delete;
    IFrameReader& operator=(const IFrameReader&) = delete;
    virtual ~IFrameReader();

    // The picture on screen at the time, in milliseconds from the file's start: the last frame
    // shown at or before it. Valid until the next call. A still picture shows at any time.
    virtual const Velmor::AV::Frame& frameAt(std::int64_t milliseconds) = 0;
};

// Opens readers: one for each clip that shows, so that two clips of one file do not make each
// other seek.
class IFrameReaders {
public:
    IFrameReaders() = default;
    IFrameReaders(const IFrameReaders&) = delete;
    IFrameReaders& operator=(const IFrameReaders&) = delete;
    virtual ~IFrameReaders();

    // Throws what opening the file throws.
    virtual std::unique_ptr<IFrameReader> open(const QString& file) = 0;
};

} // namespace Composition
