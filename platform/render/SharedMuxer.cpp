#include "platform/render/SharedMuxer.h"

#include "platform/av/Encoder.h"
#include "platform/av/Packet.h"

#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace Velmor::Render {
namespace {

struct Stream {
    const AV::Encoder* encoder = nullptr;
    int index = -1;
    std::vector<AV::Packet> waiting;
};

} // namespace

class SharedMuxer::Private {
public:
    Private(int descriptor, const std::string& name, const std::string& format)
        : muxer(descriptor, name, format) {}

    AV::Muxer muxer;
    mutable std::mutex mutex;
    std::vector<Stream> streams;
    bool headerWritten = false;

    bool allOpened() const {
        for (const Stream& stream : streams) {
            if (!stream.encoder)
                return false;
        }
        return true;
    }

    void writeHeader() {
        for (Stream& stream : streams)
            stream.index = muxer.addStream(*stream.encoder);
        muxer.writeHeader();
        headerWritten = true;
        for (Stream& stream : streams) {
            for (AV::Packet& packet : stream.waiting)
                muxer.write(stream.index, packet);
            stream.waiting.clear();
        }
    }
};

SharedMuxer::SharedMuxer(int descriptor, const std::string& name, const std::string& format)
    : d(std::make_unique<Private>(descriptor, name, format)) {}

SharedMuxer::~SharedMuxer() = default;

bool SharedMuxer::wantsGlobalHeader() const {
    return d->muxer.wantsGlobalHeader();
}

int SharedMuxer::add() {
    std::lock_guard<std::mutex> lock(d->mutex);
    if (d->headerWritten)
        throw std::logic_error("Can not write " + d->muxer.name()
                               + ": a stream added after the header");
    d->streams.emplace_back();
    return static_cast<int>(d->streams.size()) - 1;
}

void SharedMuxer::opened(int stream, const AV::Encoder& encoder) {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->streams.at(stream).encoder = &encoder;
    if (d->allOpened())
        d->writeHeader();
}

void SharedMuxer::write(int stream, AV::Packet& packet) {
    std::lock_guard<std::mutex> lock(d->mutex);
    Stream& target = d->streams.at(stream);
    if (!d->headerWritten) {
        target.waiting.push_back(std::exchange(packet, AV::Packet()));
        return;
    }
    d->muxer.write(target.index, packet);
}

void SharedMuxer::finish() {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->muxer.finish();
}

AV::Muxer::Written SharedMuxer::written(int stream) const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->muxer.written(d->streams.at(stream).index);
}

} // namespace Velmor::Render
