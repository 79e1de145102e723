#include "platform/render/SharedDemuxer.h"

#include "platform/av/Demuxer.h"
#include "platform/av/Packet.h"
#include "platform/render/Cancelled.h"
#include "platform/render/Stop.h"

#include <condition_variable>
#include <deque>
#include <limits>
#include <map>
#include <mutex>
#include <utility>

namespace Velmor::Render {
namespace {

struct Queue {
    std::deque<AV::Packet> packets;
    bool finished = false;
};

} // namespace

class SharedDemuxer::Private {
public:
    Private(AV::Demuxer& demuxer, const Stop& stop)
        : demuxer(demuxer)
        , stop(stop) {}

    AV::Demuxer& demuxer;
    const Stop& stop;
    std::size_t capacity = std::numeric_limits<std::size_t>::max();

    std::mutex mutex;
    // Wakes the consumers: a packet queued or taken, a read ended, a stream finished, the stop.
    std::condition_variable changed;
    std::map<int, Queue> queues;
    // One consumer reads the file at a time, so that each stream keeps its order.
    bool reading = false;
    bool ended = false;
    std::exception_ptr failure;

    // Declared last: the stop may call it until it is gone.
    std::unique_ptr<Stop::Callback> onStop;

    void checkRunning() const {
        if (stop.requested())
            throw Cancelled();
        if (failure)
            std::rethrow_exception(failure);
    }

    // Reads one packet with the lock released; false at the end of the file.
    bool read(std::unique_lock<std::mutex>& lock, AV::Packet& packet) {
        reading = true;
        lock.unlock();
        bool more = false;
        try {
            more = demuxer.read(packet);
        } catch (...) {
            lock.lock();
            reading = false;
            failure = std::current_exception();
            changed.notify_all();
            throw;
        }
        lock.lock();
        if (!more)
            ended = true;
        return more;
    }

    // Queues another stream's packet, waiting while its queue is full, as the reader still, so
    // that nobody reads past it meanwhile. Drops it when the render stops.
    void hand(std::unique_lock<std::mutex>& lock, AV::Packet& packet) {
        const auto found = queues.find(packet.streamIndex());
        if (found == queues.end())
            return;
        Queue& queue = found->second;
        changed.wait(lock, [&] {
            return queue.finished || queue.packets.size() < capacity || stop.requested();
        });
        if (!queue.finished && !stop.requested())
            queue.packets.push_back(std::exchange(packet, AV::Packet()));
    }
};

SharedDemuxer::SharedDemuxer(AV::Demuxer& demuxer, const Stop& stop)
    : d(std::make_unique<Private>(demuxer, stop)) {
    d->onStop = std::make_unique<Stop::Callback>(stop, [this] {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->changed.notify_all();
    });
}

SharedDemuxer::~SharedDemuxer() = default;

void SharedDemuxer::keep(int stream) {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->queues[stream];
}

void SharedDemuxer::limit(std::size_t capacity) {
    std::lock_guard<std::mutex> lock(d->mutex);
    d->capacity = capacity ? capacity : 1;
}

bool SharedDemuxer::next(int stream, AV::Packet& packet) {
    std::unique_lock<std::mutex> lock(d->mutex);
    Queue& queue = d->queues.at(stream);
    for (;;) {
        d->changed.wait(lock, [&] {
            return !d->reading || !queue.packets.empty() || queue.finished || d->stop.requested()
                   || d->failure;
        });
        d->checkRunning();
        if (!queue.packets.empty()) {
            packet = std::move(queue.packets.front());
            queue.packets.pop_front();
            d->changed.notify_all();
            return true;
        }
        if (queue.finished || d->ended)
            return false;
        if (d->reading)
            continue;
        const bool more = d->read(lock, packet);
        const bool own = more && packet.streamIndex() == stream;
        if (more && !own)
            d->hand(lock, packet);
        d->reading = false;
        d->changed.notify_all();
        if (own)
            return true;
    }
}

void SharedDemuxer::finish(int stream) {
    std::lock_guard<std::mutex> lock(d->mutex);
    Queue& queue = d->queues.at(stream);
    queue.finished = true;
    queue.packets.clear();
    d->changed.notify_all();
}

} // namespace Velmor::Render
