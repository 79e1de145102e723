#pragma once

#include "platform/av/Frame.h"
#include "platform/av/Geometry.h"
#include "platform/effects/Colour.h"

namespace Effects {

// The pixel format pictures are composed in: yuv420p, limited range, what the encoders take.
int composingFormat();
// yuva420p: a picture to lay over a composed one, its alpha not premultiplied.
int overlayFormat();

// A new composing picture of the size, every pixel the colour.
Velmor::AV::Frame canvas(Velmor::AV::Size size, YuvColour colour);
// Paints every pixel of a composing picture the colour.
void fill(Velmor::AV::Frame& picture, YuvColour colour);
// Paints a rectangle of a composing picture the colour; its chroma covers the rectangle's
// pixels, so a rectangle at odd pixels also colours the chroma its neighbours share.
void fillRect(Velmor::AV::Frame& picture, const Velmor::AV::Rect& rect, YuvColour colour);

// Throws std::invalid_argument "<what> needs yuv420p pictures of one size, not <description>"
// unless every picture is a composing picture of the first one's size.
void requireComposing(const char* what, std::initializer_list<const Velmor::AV::Frame*> pictures);

} // namespace Effects
