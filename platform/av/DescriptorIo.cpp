#include "platform/av/DescriptorIo.h"

#include "platform/av/MediaError.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/mem.h>
}

namespace Velmor::AV {
namespace {

// Larger than FFmpeg's own 32 KiB: fewer system calls for a file of many megabytes.
constexpr int bufferSize = 256 * 1024;

// One reader's or the writer's place in the file.
struct Position {
    int descriptor = -1;
    std::int64_t offset = 0;
};

int readAt(void* opaque, std::uint8_t* buffer, int size) {
    auto* at = static_cast<Position*>(opaque);
    ssize_t got = 0;
    do {
        got = ::pread(at->descriptor, buffer, static_cast<std::size_t>(size), at->offset);
    } while (got < 0 && errno == EINTR);
    if (got < 0)
        return AVERROR(errno);
    if (got == 0)
        return AVERROR_EOF;
    at->offset += got;
    return static_cast<int>(got);
}

int writeAt(void* opaque, std::uint8_t* buffer, int size) {
    auto* at = static_cast<Position*>(opaque);
    int written = 0;
    while (written < size) {
        const ssize_t put = ::pwrite(at->descriptor, buffer + written,
                                     static_cast<std::size_t>(size - written), at->offset);
        if (put < 0 && errno == EINTR)
            continue;
        if (put < 0)
            return AVERROR(errno);
        written += static_cast<int>(put);
        at->offset += put;
    }
    return written;
}

std::int64_t seekTo(void* opaque, std::int64_t offset, int whence) {
    auto* at = static_cast<Position*>(opaque);
    struct stat status {};
    whence &= ~AVSEEK_FORCE;
    if ((whence == AVSEEK_SIZE || whence == SEEK_END) && ::fstat(at->descriptor, &status) != 0)
        return AVERROR(errno);
    if (whence == AVSEEK_SIZE)
        return status.st_size;
    std::int64_t target = offset;
    if (whence == SEEK_CUR)
        target += at->offset;
    else if (whence == SEEK_END)
        target += status.st_size;
    else if (whence != SEEK_SET)
        return AVERROR(EINVAL);
    if (target < 0)
        return AVERROR(EINVAL);
    at->offset = target;
    return target;
}

struct FreeIo {
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
};
using Io = std::unique_ptr<AVIOContext, FreeIo>;

// Null when out of memory.
Io makeIo(Position& at, bool writes) {
    auto* buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    if (!buffer)
        return nullptr;
    AVIOContext* io =
        avio_alloc_context(buffer, bufferSize, writes ? 1 : 0, &at, writes ? nullptr : readAt,
                           writes ? writeAt : nullptr, seekTo);
    if (!io)
        av_free(buffer);
    return Io(io);
}

struct Reader {
    Position at;
    Io io;
};

} // namespace

class DescriptorIo::Private {
public:
    Private(int descriptor, std::string name)
        : name(std::move(name))
        , writer{descriptor, 0} {}

    const std::string name;
    Position writer;
    Io io;
    std::vector<std::unique_ptr<Reader>> readers;

    std::string failure() const { return "Can not write " + name; }

    static int openAgain(AVFormatContext* context, AVIOContext** io, const char* url, int flags,
                         AVDictionary**) {
        auto* self = static_cast<Private*>(context->opaque);
        if (!self || !url || self->name != url || (flags & AVIO_FLAG_WRITE))
            return AVERROR(EPERM);
        auto reader = std::make_unique<Reader>();
        reader->at.descriptor = self->writer.descriptor;
        reader->io = makeIo(reader->at, false);
        if (!reader->io)
            return AVERROR(ENOMEM);
        *io = reader->io.get();
        self->readers.push_back(std::move(reader));
        return 0;
    }

    static int closeAgain(AVFormatContext* context, AVIOContext* io) {
        auto* self = static_cast<Private*>(context->opaque);
        if (!self)
            return 0;
        auto& readers = self->readers;
        readers.erase(std::remove_if(readers.begin(), readers.end(),
                                     [io](const auto& reader) { return reader->io.get() == io; }),
                      readers.end());
        return 0;
    }
};

DescriptorIo::DescriptorIo(int descriptor, std::string name)
    : d(std::make_unique<Private>(descriptor, std::move(name))) {}

DescriptorIo::~DescriptorIo() = default;

void DescriptorIo::attach(AVFormatContext& context) {
    d->io = makeIo(d->writer, true);
    if (!d->io)
        throw MediaError(d->failure() + ": " + errorText(AVERROR(ENOMEM)));
    context.pb = d->io.get();
    context.flags |= AVFMT_FLAG_CUSTOM_IO;
    context.opaque = d.get();
    context.io_open = &Private::openAgain;
    context.io_close2 = &Private::closeAgain;
}

void DescriptorIo::flush() {
    if (!d->io)
        return;
    avio_flush(d->io.get());
    if (d->io->error < 0)
        throw MediaError(d->failure() + ": " + errorText(d->io->error));
}

} // namespace Velmor::AV
