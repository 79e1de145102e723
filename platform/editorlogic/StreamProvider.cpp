#include "platform/editorlogic/StreamProvider.h"

#include "platform/av/Demuxer.h"
#include "platform/av/MediaError.h"
#include "platform/editorlogic/DecodedVideoStream.h"
#include "platform/editorlogic/ICreatorAudioDecoder.h"
#include "platform/editorlogic/ICreatorAudioStreamCutter.h"
#include "platform/editorlogic/ICreatorFileParser.h"
#include "platform/editorlogic/ICreatorVideoDecoder.h"
#include "platform/editorlogic/ICreatorVideoStreamCutter.h"
#include "platform/editorlogic/VideoStreamCutter.h"
#include "platform/engine/Probe.h"
#include "platform/foundation/CallLog.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace Media {
namespace {

using Clock = std::chrono::steady_clock;

std::atomic<StreamProvider*> s_instance{nullptr};

} // namespace

// Shared with the streams handed out, so that one given back after the provider is gone finds
// the cache closed instead of a dangling pointer.
class StreamProvider::Private {
public:
    struct Idle {
        std::unique_ptr<DecodedVideoStream> stream;
        Clock::time_point expires;
    };

    ICreatorVideoDecoder* videoDecoders;
    // Kept for the audio streams of exports, which nothing asks for yet.
    ICreatorAudioDecoder* audioDecoders;
    ICreatorVideoStreamCutter* videoCutters;
    ICreatorAudioStreamCutter* audioCutters;
    int cacheLifetime;

    mutable std::mutex mutex;
    std::condition_variable changed;
    std::multimap<QString, Idle> idle;
    int opened = 0;
    bool closed = false;
    std::thread sweeper;

    // Closes what outlived its time in the cache, on a thread of its own so that an expiry
    // needs nobody to come by.
    void sweep() {
        std::unique_lock<std::mutex> lock(mutex);
        while (!closed) {
            if (idle.empty()) {
                changed.wait(lock);
                continue;
            }
            auto first = idle.begin();
            for (auto entry = idle.begin(); entry != idle.end(); ++entry) {
                if (entry->second.expires < first->second.expires)
                    first = entry;
            }
            // A copy: while the lock is released a user may take the entry out of the cache,
            // and wait_until reads its deadline again on waking.
            const Clock::time_point deadline = first->second.expires;
            if (Clock::now() < deadline) {
                changed.wait_until(lock, deadline);
                continue;
            }
            auto expired = std::move(first->second.stream);
            idle.erase(first);
            lock.unlock();
            expired.reset();
            lock.lock();
        }
    }

    std::unique_ptr<DecodedVideoStream> takeIdle(const QString& path) {
        std::lock_guard<std::mutex> lock(mutex);
        const auto found = idle.find(path);
        if (found == idle.end())
            return nullptr;
        auto stream = std::move(found->second.stream);
        idle.erase(found);
        return stream;
    }

    std::unique_ptr<DecodedVideoStream> open(const QString& path) {
        // The engine's decoder creator opens the files it decodes too.
        auto* parsers = dynamic_cast<const ICreatorFileParser*>(videoDecoders);
        if (!parsers)
            throw std::logic_error("The video decoder creator opens no files");
        auto demuxer = parsers->createFileParser(path, {});
        const int index = demuxer->bestStream("video");
        if (index < 0)
            throw Velmor::AV::MediaError("No video stream in " + path.toStdString());
        auto decoder = videoDecoders->createVideoDecoder(*demuxer, index);
        auto stream = std::make_unique<DecodedVideoStream>(std::move(demuxer), std::move(decoder));
        stream->setCutter(
            videoCutters->createVideoStreamCutter(stream->demuxer(), stream->decoder()));
        std::lock_guard<std::mutex> lock(mutex);
        ++opened;
        return stream;
    }

    void giveBack(std::unique_ptr<DecodedVideoStream> stream) {
        if (cacheLifetime <= 0)
            return;
        std::unique_lock<std::mutex> lock(mutex);
        if (closed)
            return;
        const QString path = stream->path();
        idle.emplace(
            path, Idle{std::move(stream), Clock::now() + std::chrono::milliseconds(cacheLifetime)});
        lock.unlock();
        changed.notify_all();
    }
};

StreamProvider::StreamProvider(ICreatorVideoDecoder* videoDecoders,
                               ICreatorAudioDecoder* audioDecoders,
                               ICreatorVideoStreamCutter* videoCutters,
                               ICreatorAudioStreamCutter* audioCutters, int cacheLifetime)
    : d(std::make_shared<Private>()) {
    Velmor::Testing::Probe::hit("Media::StreamProvider::StreamProvider");
    d->videoDecoders = videoDecoders;
    d->audioDecoders = audioDecoders;
    d->videoCutters = videoCutters;
    d->audioCutters = audioCutters;
    d->cacheLifetime = cacheLifetime;
    if (cacheLifetime > 0)
        d->sweeper = std::thread(&Private::sweep, d.get());
    Velmor::Testing::CallLog::record("Media::StreamProvider::StreamProvider("
                                     + std::to_string(cacheLifetime) + ")");
    s_instance.store(this);
}

StreamProvider::~StreamProvider() {
    StreamProvider* self = this;
    s_instance.compare_exchange_strong(self, nullptr);
    std::multimap<QString, Private::Idle> idle;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->closed = true;
        idle.swap(d->idle);
    }
    d->changed.notify_all();
    if (d->sweeper.joinable())
        d->sweeper.join();
    idle.clear();
    Velmor::Testing::CallLog::record("Media::StreamProvider::~StreamProvider");
}

StreamProvider* StreamProvider::instance() {
    return s_instance.load();
}

int StreamProvider::cacheLifetime() const {
    return d->cacheLifetime;
}

std::shared_ptr<DecodedVideoStream> StreamProvider::videoStream(const QString& path) {
    auto stream = d->takeIdle(path);
    if (!stream)
        stream = d->open(path);
    std::weak_ptr<Private> cache = d;
    return std::shared_ptr<DecodedVideoStream>(stream.release(), [cache](DecodedVideoStream* used) {
        std::unique_ptr<DecodedVideoStream> owned(used);
        if (auto open = cache.lock())
            open->giveBack(std::move(owned));
    });
}

int StreamProvider::openedStreams() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return d->opened;
}

int StreamProvider::cachedStreams() const {
    std::lock_guard<std::mutex> lock(d->mutex);
    return static_cast<int>(d->idle.size());
}

} // namespace Media
