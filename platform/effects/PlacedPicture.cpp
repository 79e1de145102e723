#include "platform/effects/PlacedPicture.h"

#include "platform/av/Plane.h"
#include "platform/effects/Canvas.h"
#include "platform/effects/CoverageBlend.h"

#include <stdexcept>

namespace Effects {
namespace {

using Velmor::AV::ConstPlane;
using Velmor::AV::Plane;

// The alpha of the overlay's sample (x, y) of a plane `scale` times smaller than the alpha
// plane: the mean of the alpha samples it covers.
double alphaOf(const ConstPlane& alpha, int x, int y, int scale) {
    int sum = 0;
    int count = 0;
    for (int dy = 0; dy < scale && y * scale + dy < alpha.height; ++dy) {
        for (int dx = 0; dx < scale && x * scale + dx < alpha.width; ++dx) {
            sum += alpha.row(y * scale + dy)[x * scale + dx];
            ++count;
        }
    }
    return count ? sum / (255.0 * count) : 0.0;
}

void blendPlane(const Plane& target, const ConstPlane& overlay, const ConstPlane& alpha, int atX,
                int atY, int scale, double opacity) {
    const int firstX = std::max(0, -atX);
    const int firstY = std::max(0, -atY);
    const int lastX = std::min(overlay.width, target.width - atX);
    const int lastY = std::min(overlay.height, target.height - atY);
    for (int y = firstY; y < lastY; ++y) {
        std::uint8_t* out = target.row(atY + y) + atX;
        const std::uint8_t* in = overlay.row(y);
        for (int x = firstX; x < lastX; ++x) {
            const double share = alphaOf(alpha, x, y, scale) * opacity;
            if (share > 0)
                out[x] = mixSamples(out[x], in[x], share);
        }
    }
}

} // namespace

void blendOver(Velmor::AV::Frame& target, const PlacedPicture& placed, double opacity) {
    requireComposing("An overlay", {&target});
    if (placed.isEmpty())
        return;
    if (placed.picture.format() != overlayFormat())
        throw std::invalid_argument("An overlay needs a yuva420p picture");
    if (placed.x % 2 != 0 || placed.y % 2 != 0)
        throw std::invalid_argument("An overlay needs an even place, not "
                                    + std::to_string(placed.x) + "," + std::to_string(placed.y));
    const double share = std::clamp(opacity, 0.0, 1.0);
    if (share <= 0)
        return;
    const ConstPlane alpha = Velmor::AV::planeOf(placed.picture, 3);
    for (int index = 0; index < 3; ++index) {
        const int scale = index == 0 ? 1 : 2;
        blendPlane(Velmor::AV::planeOf(target, index), Velmor::AV::planeOf(placed.picture, index),
                   alpha, placed.x / scale, placed.y / scale, scale, share);
    }
}

} // namespace Effects
