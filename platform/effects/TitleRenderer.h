#pragma once

#include "platform/av/Geometry.h"
#include "platform/effects/PlacedPicture.h"
#include "platform/effects/Title.h"

#include <string>

namespace Effects {

// Draws a title once, as an overlay for every frame it shows on: libavfilter's drawtext sets the
// text through freetype and fontconfig, each line (split at "\n") on its own, aligned by the
// position's side, a twentieth of the frame's height from its edges. Drawn on a black and a
// white frame, the two pictures give the title's colour and coverage exactly, the box's and the
// colours' own alpha included, which drawing on a transparent frame does not (drawtext
// multiplies a translucent colour's alpha in twice there). The overlay is cut to what shows; a
// title of empty lines shows nothing. Throws Velmor::AV::MediaError when libavfilter refuses.
PlacedPicture renderTitle(const std::string& text, const TitleStyle& style, Velmor::AV::Size frame);

// The lines of a title: the text split at each "\n".
std::vector<std::string> titleLines(const std::string& text);

} // namespace Effects
