#pragma once

#include <memory>
#include <string>

struct AVFormatContext;

namespace Velmor::AV {

// A muxer's output on an open file descriptor, so that FFmpeg never opens the output by name.
// It writes and seeks through the descriptor; when a muxer opens its output again to read it
// back (MP4 moving its index to the front), it gets the same descriptor, read at a position of
// its own. Any other name, or writing, asked of the format context's io_open is refused.
//
// The descriptor stays the caller's, open for reading and writing, and outlives this object.
// One thread at a time.
class DescriptorIo {
public:
    // `name`: the output's name, the format context's url, and what failures name.
    DescriptorIo(int descriptor, std::string name);
    DescriptorIo(const DescriptorIo&) = delete;
    DescriptorIo& operator=(const DescriptorIo&) = delete;
    ~DescriptorIo();

    // Makes the context write through the descriptor, and open it again only through it. The
    // context goes before this object. Throws MediaError "Can not write <name>: <reason>".
    void attach(AVFormatContext& context);
    // Writes out what waits in the buffer. Throws MediaError "Can not write <name>: <reason>"
    // with the reason of the first write that failed so far.
    void flush();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
