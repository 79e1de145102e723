#pragma once

#include "platform/av/Frame.h"

#include <deque>
#include <utility>

namespace Velmor::Render {

// The frames a decoding source has made and not yet handed out, and whether more will come:
// a codec may give several frames for one packet, or none. One thread at a time.
class ReadyFrames {
public:
    void add(AV::Frame frame) { frames.push_back(std::move(frame)); }
    // No more frames will be added.
    void end() { ended = true; }
    bool hasEnded() const { return ended; }
    bool isEmpty() const { return frames.empty(); }
    const AV::Frame& front() const { return frames.front(); }
    void clear() { frames.clear(); }

    // Calls `feed` until a frame is ready or the end; puts the first ready frame into `frame`,
    // false at the end.
    template <typename Feed> bool next(AV::Frame& frame, Feed&& feed) {
        while (frames.empty() && !ended)
            feed();
        if (frames.empty())
            return false;
        frame = std::move(frames.front());
        frames.pop_front();
        return true;
    }

private:
    std::deque<AV::Frame> frames;
    bool ended = false;
};

} // namespace Velmor::Render
