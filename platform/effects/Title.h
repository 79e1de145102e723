#pragma once

#include "platform/effects/Colour.h"

#include <optional>
#include <string>
#include <vector>

namespace Effects {

// Where a title stands in the frame.
enum class Position {
    TopLeft,
    TopCenter,
    TopRight,
    CenterLeft,
    Center,
    CenterRight,
    BottomLeft,
    BottomCenter,
    BottomRight
};

// "top-left", "top-center", "top-right", "center-left", "center", "center-right",
// "bottom-left", "bottom-center", "bottom-right", in the order of the enumeration.
const std::vector<std::string>& positionNames();
const std::string& positionName(Position position);
// The position of a name, compared with case; empty for any other text.
std::optional<Position> positionNamed(const std::string& name);

// How a title looks.
struct TitleStyle {
    // A font family, found through fontconfig (which falls back to a font it has).
    std::string font = "DejaVu Sans";
    // The font's size in pixels of the frame; 0 for a twelfth of the frame's height.
    int size = 0;
    Colour colour{255, 255, 255, 255};
    Position position = Position::BottomCenter;
    // A box of this colour behind each line.
    std::optional<Colour> background;
};

} // namespace Effects
