#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

namespace Velmor::AV {

// A queue of at most `capacity` items between two stage threads: push waits while it is full,
// pop while it is empty, so that memory stays flat whatever the input's length.
//
// close() is the producer's end of input: pop gives out what is left, then nothing. finish() is
// the consumer's end: it takes no more, so a waiting or later push returns false and what is
// left is dropped; the producer learns that nobody wants more, which is no failure. cancel()
// ends both sides at once and drops what is left: a waiting push or pop returns at once, so no
// thread is left waiting. Any thread may call any member.
template <typename T> class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity)
        : limit(capacity ? capacity : 1) {}
    BoundedQueue(const BoundedQueue&) = delete;
    BoundedQueue& operator=(const BoundedQueue&) = delete;

    // False, and the item dropped, once the queue is closed, finished or cancelled.
    bool push(T item) {
        std::unique_lock<std::mutex> lock(mutex);
        notFull.wait(lock, [this] { return done || items.size() < limit; });
        if (done)
            return false;
        items.push_back(std::move(item));
        notEmpty.notify_one();
        return true;
    }

    // The next item; nothing once the queue is closed and empty, finished or cancelled.
    std::optional<T> pop() {
        std::unique_lock<std::mutex> lock(mutex);
        notEmpty.wait(lock, [this] { return done || !items.empty(); });
        if (items.empty() || cancelRequested || finishRequested)
            return std::nullopt;
        std::optional<T> item(std::move(items.front()));
        items.pop_front();
        notFull.notify_one();
        return item;
    }

    void close() {
        std::lock_guard<std::mutex> lock(mutex);
        done = true;
        notEmpty.notify_all();
        notFull.notify_all();
    }

    void finish() {
        std::lock_guard<std::mutex> lock(mutex);
        done = true;
        finishRequested = true;
        items.clear();
        notEmpty.notify_all();
        notFull.notify_all();
    }

    void cancel() {
        std::lock_guard<std::mutex> lock(mutex);
        done = true;
        cancelRequested = true;
        items.clear();
        notEmpty.notify_all();
        notFull.notify_all();
    }

    bool cancelled() const {
        std::lock_guard<std::mutex> lock(mutex);
        return cancelRequested;
    }

    bool finished() const {
        std::lock_guard<std::mutex> lock(mutex);
        return finishRequested;
    }

    std::size_t size() const {
        std::lock_guard<std::mutex> lock(mutex);
        return items.size();
    }

    std::size_t capacity() const { return limit; }

private:
    const std::size_t limit;
    mutable std::mutex mutex;
    std::condition_variable notEmpty;
    std::condition_variable notFull;
    std::deque<T> items;
    bool done = false;
    bool cancelRequested = false;
    bool finishRequested = false;
};

} // namespace Velmor::AV
