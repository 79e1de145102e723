#pragma once

#include "platform/render/QueuedSource.h"
#include "platform/render/Source.h"
#include "platform/render/Stop.h"

#include <cstddef>
#include <memory>

namespace Velmor::Render {

class FrameSink;

// Runs a render: owns its threads, the queues between them, its stop and its first failure.
//
// The wiring makes the stages (sources, sinks), then tells the runner how frames pass between
// them: connect() a source to a sink, and boundary() where a source is to be pulled on a thread
// of its own. Each connection is one thread that pulls its source and writes its sink until the
// end; so which stages share a thread is decided here and only here, and stage code never starts
// a thread. Then run() runs them all to their end.
//
// Ends: a source's end closes its sink, and is success. The first failure of any stage stops
// the render (every stage gives up at its next frame or wait) and is what run() throws; what the
// stages throw after the stop (Cancelled, an interrupted read) is no failure. cancel() stops the
// render too, and outranks every failure: run() throws Cancelled.
//
// Threads and lifetimes: make the runner, the stages and the connections on one thread, then
// call run() on it, once. The stages must outlive run(). stop() is for the stages, cancel() for
// anyone, on any thread, at any time (before run() too, which then runs nothing).
class Runner {
public:
    Runner();
    Runner(const Runner&) = delete;
    Runner& operator=(const Runner&) = delete;
    ~Runner();

    // The stop every stage of this render heeds.
    const Stop& stop() const;

    // A thread boundary: `source` is pulled on a thread of its own, its frames handed through a
    // queue of `capacity` frames to the source returned, which the runner owns.
    template <typename Format>
    Source<Format>& boundary(Source<Format>& source, std::size_t capacity) {
        FrameQueue& queue = addQueue(source, capacity);
        auto queued = std::make_unique<QueuedSource<Format>>(queue, source.format());
        Source<Format>& made = *queued;
        keep(std::move(queued));
        return made;
    }
    // A thread that pulls `source` and writes each frame to `sink` until the source ends (then
    // closes the sink) or the sink wants no more (then finishes the source).
    void connect(FrameSource& source, FrameSink& sink);

    // Starts a thread per connection, in the order they were made, and joins them in that
    // order (the pipeline's). Throws Cancelled after cancel(), else the first failure.
    void run();
    // Stops the render from any thread; run() throws Cancelled.
    void cancel();
    bool cancelled() const;

private:
    FrameQueue& addQueue(FrameSource& source, std::size_t capacity);
    void keep(std::unique_ptr<FrameSource> source);

    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Render
