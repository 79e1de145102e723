#pragma once

#include <cstdint>
#include <memory>

struct AVFrame;

namespace Velmor::AV {

// One decoded picture or block of samples: a move-only owner of an AVFrame. A default Frame
// holds an empty AVFrame that a decoder or scaler fills.
class Frame {
public:
    Frame();
    // A picture of its own buffers, of the given size and AVPixelFormat, every byte zero.
    static Frame picture(int width, int height, int pixelFormat);

    AVFrame* get() const { return frame.get(); }
    AVFrame* operator->() const { return frame.get(); }

    int width() const;
    int height() const;
    // The AVPixelFormat of a picture, the AVSampleFormat of samples.
    int format() const;
    // In the time base of whoever made it; AV_NOPTS_VALUE when unknown.
    std::int64_t timestamp() const;
    // The decoding timestamp of the packet whose sending made the decoder hand the frame out,
    // in the stream's time base; AV_NOPTS_VALUE when unknown. A decoder that reorders hands a
    // frame out some packets after the frame's own (see Decoder::reorderDepth).
    std::int64_t packetDecodingTimestamp() const;
    // Sets the timestamp that timestamp() reads and encoders take (pts and the decoder's best
    // effort alike).
    void setTimestamp(std::int64_t timestamp);
    // Audio only: the samples per channel.
    int samples() const;
    // Drops the buffers, keeping the AVFrame for the next fill.
    void reset();

private:
    struct Free {
        void operator()(AVFrame* frame) const;
    };
    std::unique_ptr<AVFrame, Free> frame;
};

} // namespace Velmor::AV
