#pragma once

namespace Velmor::AV {
class Frame;
}

namespace Velmor::Render {

// Where frames go, one after another: the end of a render's stream (an encoder) or the entry of
// a thread boundary. One thread at a time; the runner calls it on the thread it chose.
class FrameSink {
public:
    virtual ~FrameSink();

    // Takes the next frame, timed as its source says; may move from it. False when the sink
    // wants no more (which is no failure: the frames before were taken). Throws its failure.
    virtual bool write(AV::Frame& frame) = 0;
    // The source has ended: the sink gives out what it still holds. Not called after a failure,
    // a stop, or a write that returned false.
    virtual void close() = 0;
};

} // namespace Velmor::Render
