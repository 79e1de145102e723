#pragma once

#include "platform/av/Decoder.h"
#include "platform/av/Demuxer.h"
#include "platform/av/Frame.h"
#include "platform/av/Plane.h"
#include "platform/av/Scaler.h"
#include "platform/effects/Canvas.h"

#include <string>

namespace EditorService::Testing {

// A composing picture of one colour.
inline Velmor::AV::Frame uniformPicture(int width, int height, std::uint8_t y, std::uint8_t u = 128,
                                        std::uint8_t v = 128) {
    return Effects::canvas(Velmor::AV::Size{width, height}, Effects::YuvColour{y, u, v});
}

inline std::uint8_t sampleAt(const Velmor::AV::Frame& picture, int plane, int x, int y) {
    return Velmor::AV::planeOf(picture, plane).row(y)[x];
}

inline void setSample(Velmor::AV::Frame& picture, int plane, int x, int y, std::uint8_t value) {
    Velmor::AV::planeOf(picture, plane).row(y)[x] = value;
}

// Frame `index` of a media file's video, decoded and converted to a composing picture of its
// own size.
inline Velmor::AV::Frame decodedPicture(const std::string& path, int index = 0) {
    Velmor::AV::Demuxer demuxer(path);
    Velmor::AV::Decoder decoder(demuxer, demuxer.bestStream("video"), 1);
    Velmor::AV::Frame frame;
    for (int decoded = 0; decoded <= index; ++decoded)
        decoder.decodeNext(demuxer, frame);
    Velmor::AV::Frame picture =
        Velmor::AV::Frame::picture(frame.width(), frame.height(), Effects::composingFormat());
    Velmor::AV::Scaler(1).scale(frame, picture);
    return picture;
}

} // namespace EditorService::Testing
