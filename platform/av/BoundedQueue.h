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
// close() is the producer's end of input: pop gives out what is left, then nothing. cancel()
// ends both sides at once and drops what is left: a waiting push or pop returns at once, so no
// thread is left waiting. Any thread may call any member.
template <typename T> class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity)
        : m_capacity(capacity ? capacity : 1) {}
    BoundedQueue(const BoundedQueue&) = delete;
    BoundedQueue& operator=(const BoundedQueue&) = delete;

    // False, and the item dropped, once the queue is closed or cancelled.
    bool push(T item) {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_notFull.wait(lock, [this] { return m_done || m_items.size() < m_capacity; });
        if (m_done)
            return false;
        m_items.push_back(std::move(item));
        m_notEmpty.notify_one();
        return true;
    }

    // The next item; nothing once the queue is closed and empty, or cancelled.
    std::optional<T> pop() {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_notEmpty.wait(lock, [this] { return m_done || !m_items.empty(); });
        if (m_items.empty() || m_cancelled)
            return std::nullopt;
        std::optional<T> item(std::move(m_items.front()));
        m_items.pop_front();
        m_notFull.notify_one();
        return item;
    }

    void close() {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_done = true;
        m_notEmpty.notify_all();
        m_notFull.notify_all();
    }

    void cancel() {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_done = true;
        m_cancelled = true;
        m_items.clear();
        m_notEmpty.notify_all();
        m_notFull.notify_all();
    }

    bool cancelled() const {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_cancelled;
    }

    std::size_t size() const {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_items.size();
    }

    std::size_t capacity() const { return m_capacity; }

private:
    const std::size_t m_capacity;
    mutable std::mutex m_mutex;
    std::condition_variable m_notEmpty;
    std::condition_variable m_notFull;
    std::deque<T> m_items;
    bool m_done = false;
    bool m_cancelled = false;
};

} // namespace Velmor::AV
