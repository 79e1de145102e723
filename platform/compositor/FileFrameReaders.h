#pragma once

#include "platform/compositor/FrameReader.h"

#include <functional>

namespace Composition {

// Readers that open their files themselves: each demuxes and decodes its file's best video
// stream and puts it on the times asked for, decoding on for a time a little ahead and seeking
// for any other. For a render, which needs no cache shared with other work.
class FileFrameReaders : public IFrameReaders {
public:
    // Asked while a file is read; true gives the read up (a render that stops).
    using Interrupted = std::function<bool()>;

    explicit FileFrameReaders(Interrupted interrupted = {});

    // Throws MediaError "Can not open media file: <file>: <reason>", and "No video stream in
    // <file>" for a file without pictures.
    std::unique_ptr<IFrameReader> open(const QString& file) override;

private:
    Interrupted interrupted;
};

} // namespace Composition
