#pragma once

namespace Velmor::AV {
class Frame;
}

namespace Velmor::Render {

// Where frames come from, one after another: a stage of a render that something pulls. One
// thread at a time pulls a source; which thread is the runner's matter (a source may be pulled
// on another thread than the one that made it).
class FrameSource {
public:
    virtual ~FrameSource();

    // Puts the next frame into `frame` (replacing whatever it held); false at the end, and on
    // every call after it. Throws the source's failure, and Cancelled when the render stops.
    virtual bool next(AV::Frame& frame) = 0;
    // The consumer takes no more frames, before the end: the source may let go of what it holds
    // and stop what feeds it. Never a failure; next() is not called again. By default nothing.
    virtual void finish();
};

} // namespace Velmor::Render
