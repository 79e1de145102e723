#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Picture.h"
#include "platform/render/Cancelled.h"
#include "platform/render/FrameSink.h"
#include "platform/render/Stop.h"
#include "platform/render/VideoSource.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace EditorService::Testing {

// A one-way gate between threads: wait() returns once open() was called.
class Gate {
public:
    void open() {
        std::lock_guard<std::mutex> lock(mutex);
        opened = true;
        changed.notify_all();
    }
    void wait() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [this] { return opened; });
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    bool opened = false;
};

// What a fake stage does when it reaches its frame `at`.
enum class Act {
    Nothing,
    // Throws "<name> failed on frame <at>".
    Fail,
    // Waits for the render's stop, then throws Cancelled, as a stage that heeds it.
    WaitForStop,
    // Waits for the render's stop, then throws "<name> failed late".
    FailAfterStop,
    // Waits until the test opens `proceed`, then goes on.
    WaitForTest,
};

// The behaviour shared by the fake source and sink: what to do at which frame, with gates that
// tell the test it arrived and let it wait for the stop.
class Script {
public:
    Script(std::string name, const Velmor::Render::Stop& stop)
        : name(std::move(name))
        , onStop(stop, [this] { stopped.open(); }) {}

    void act(int frame) {
        if (frame != at || what == Act::Nothing)
            return;
        arrived.open();
        switch (what) {
        case Act::Fail:
            throw std::runtime_error(name + " failed on frame " + std::to_string(frame));
        case Act::WaitForStop:
            stopped.wait();
            throw Velmor::Render::Cancelled();
        case Act::FailAfterStop:
            stopped.wait();
            throw std::runtime_error(name + " failed late");
        case Act::WaitForTest:
            proceed.wait();
            return;
        case Act::Nothing:
            return;
        }
    }

    const std::string name;
    Act what = Act::Nothing;
    int at = -1;
    Gate arrived;
    Gate proceed;
    Gate stopped;

private:
    Velmor::Render::Stop::Callback onStop;
};

// Small grey pictures timed 0, 1, 2... in 1/25 s.
class FakeVideo : public Velmor::Render::VideoSource {
public:
    FakeVideo(int count, const Velmor::Render::Stop& stop)
        : script("source", stop)
        , count(count) {}

    Velmor::Render::VideoFormat format() const override {
        return {16, 16, Velmor::AV::pixelFormat("yuv420p"), {25, 1}, {1, 25}};
    }

    bool next(Velmor::AV::Frame& frame) override {
        const int index = pulled;
        if (index >= count)
            return false;
        script.act(index);
        frame = Velmor::AV::Frame::picture(16, 16, Velmor::AV::pixelFormat("yuv420p"));
        frame.setTimestamp(index);
        ++pulled;
        return true;
    }

    void finish() override { finished = true; }

    Script script;
    const int count;
    std::atomic<int> pulled{0};
    std::atomic<bool> finished{false};
};

// Records the times of the frames it takes.
class FakeSink : public Velmor::Render::FrameSink {
public:
    explicit FakeSink(const Velmor::Render::Stop& stop)
        : script("sink", stop) {}

    bool write(Velmor::AV::Frame& frame) override {
        const int index = static_cast<int>(taken.size());
        if (index == refuseFrom)
            return false;
        script.act(index);
        taken.push_back(frame.timestamp());
        return true;
    }

    void close() override { ++closed; }

    Script script;
    // From this frame on it wants no more.
    int refuseFrom = -1;
    std::vector<std::int64_t> taken;
    std::atomic<int> closed{0};
};

} // namespace EditorService::Testing
