#pragma once

namespace Effects {

// A rectangle in a picture's normalised coordinates: [0, 0, 1, 1] is the whole picture,
// whatever its size, x to the right and y down.
struct NormalisedRect {
    double x = 0;
    double y = 0;
    double width = 1;
    double height = 1;

    bool operator==(const NormalisedRect& other) const {
        return x == other.x && y == other.y && width == other.width && height == other.height;
    }
    bool operator!=(const NormalisedRect& other) const { return !(*this == other); }
};

// The rectangle `progress` of the way from `from` to `to`, each number moved linearly.
inline NormalisedRect interpolate(const NormalisedRect& from, const NormalisedRect& to,
                                  double progress) {
    const auto between = [progress](double a, double b) { return a + (b - a) * progress; };
    return {between(from.x, to.x), between(from.y, to.y), between(from.width, to.width),
            between(from.height, to.height)};
}

} // namespace Effects
