#pragma once

#include "platform/av/AudioBlock.h"
#include "platform/av/Frame.h"

#include <QString>
#include <cstdint>
#include <memory>

namespace Mixing {

// Gives the sound of one media file from a time on, sample after sample, in the mix's shape.
class ISoundReader {
public:
    ISoundReader() = default;
    ISoundReader(const ISoundReader&) = delete;
    ISoundReader& operator=(const ISoundReader&) = delete;
    virtual ~ISoundReader();

    // Writes the next `count` samples of each channel into the block (planar float, of the
    // reader's shape) from its sample `offset` on; silence once the sound has ended. Throws
    // what reading the file throws.
    virtual void read(Velmor::AV::Frame& block, int offset, int count) = 0;
    // Passes over the next `count` samples.
    virtual void skip(std::int64_t count) = 0;
};

// Opens readers: one for each play of a clip.
class ISoundReaders {
public:
    ISoundReaders() = default;
    ISoundReaders(const ISoundReaders&) = delete;
    ISoundReaders& operator=(const ISoundReaders&) = delete;
    virtual ~ISoundReaders();

    // A reader of the file's sound from `fromMs` milliseconds after the file's start, in
    // `shape` (planar float). Readers opened alike give the same samples, so that the mix at a
    // time does not depend on where a render began. A file without sound reads as silence.
    // Throws what opening the file throws.
    virtual std::unique_ptr<ISoundReader> open(const QString& file, std::int64_t fromMs,
                                               Velmor::AV::AudioShape shape) = 0;
};

} // namespace Mixing
