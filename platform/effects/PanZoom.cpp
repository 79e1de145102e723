#include "platform/effects/PanZoom.h"

#include "platform/av/Picture.h"
#include "platform/av/Plane.h"
#include "platform/av/Scaler.h"
#include "platform/effects/Canvas.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace Effects {
namespace {

using Velmor::AV::ConstPlane;
using Velmor::AV::Plane;

// The source samples one target sample is weighed from, along one axis.
struct Taps {
    int first = 0;
    std::vector<float> weights;
};

// Target sample i of `targetLength` shows the source at normalised offset..offset+length of a
// source axis of `sourceLength` samples. Samples past the edge repeat the edge.
std::vector<Taps> tapsFor(int targetLength, int sourceLength, double offset, double length) {
    std::vector<Taps> all(static_cast<std::size_t>(targetLength));
    const double step = length * sourceLength / targetLength;
    const double reach = std::max(1.0, step);
    for (int i = 0; i < targetLength; ++i) {
        const double centre = (offset + (i + 0.5) / targetLength * length) * sourceLength - 0.5;
        const int first = static_cast<int>(std::floor(centre - reach)) + 1;
        const int last = static_cast<int>(std::ceil(centre + reach)) - 1;
        Taps& taps = all[static_cast<std::size_t>(i)];
        taps.first = first;
        double sum = 0;
        for (int j = first; j <= last; ++j) {
            const double weight = std::max(0.0, 1 - std::abs(j - centre) / reach);
            taps.weights.push_back(static_cast<float>(weight));
            sum += weight;
        }
        for (float& weight : taps.weights)
            weight = static_cast<float>(weight / sum);
    }
    return all;
}

int clampedIndex(int index, int length) {
    return std::clamp(index, 0, length - 1);
}

// Rows first, into `rows` (one row of target width for each source row), then columns.
void resamplePlane(const ConstPlane& source, const Plane& target, const NormalisedRect& region,
                   std::vector<float>& rows) {
    const auto across = tapsFor(target.width, source.width, region.x, region.width);
    const auto down = tapsFor(target.height, source.height, region.y, region.height);
    const int top = clampedIndex(down.front().first, source.height);
    const int bottom = clampedIndex(
        down.back().first + static_cast<int>(down.back().weights.size()) - 1, source.height);
    rows.assign(static_cast<std::size_t>(bottom - top + 1) * target.width, 0.0f);
    for (int y = top; y <= bottom; ++y) {
        const std::uint8_t* in = source.row(y);
        float* out = rows.data() + static_cast<std::size_t>(y - top) * target.width;
        for (int x = 0; x < target.width; ++x) {
            const Taps& taps = across[static_cast<std::size_t>(x)];
            float sum = 0;
            for (std::size_t k = 0; k < taps.weights.size(); ++k)
                sum += taps.weights[k]
                       * in[clampedIndex(taps.first + static_cast<int>(k), source.width)];
            out[x] = sum;
        }
    }
    for (int y = 0; y < target.height; ++y) {
        const Taps& taps = down[static_cast<std::size_t>(y)];
        std::uint8_t* out = target.row(y);
        for (int x = 0; x < target.width; ++x) {
            float sum = 0;
            for (std::size_t k = 0; k < taps.weights.size(); ++k) {
                const int row = clampedIndex(taps.first + static_cast<int>(k), source.height);
                sum +=
                    taps.weights[k] * rows[static_cast<std::size_t>(row - top) * target.width + x];
            }
            out[x] = static_cast<std::uint8_t>(std::clamp(std::lround(sum), 0L, 255L));
        }
    }
}

} // namespace

NormalisedRect filledRegion(const NormalisedRect& rect, Velmor::AV::Size source,
                            Velmor::AV::Size target) {
    const double width = rect.width * source.width;
    const double height = rect.height * source.height;
    const double targetShape = static_cast<double>(target.width) / target.height;
    NormalisedRect region = rect;
    if (width > height * targetShape) {
        region.width = height * targetShape / source.width;
        region.x += (rect.width - region.width) / 2;
    } else {
        region.height = width / targetShape / source.height;
        region.y += (rect.height - region.height) / 2;
    }
    return region;
}

class PanZoomPainter::Private {
public:
    Velmor::AV::Scaler converter{1};
    std::vector<float> rows;
};

PanZoomPainter::PanZoomPainter()
    : d(std::make_unique<Private>()) {}

PanZoomPainter::~PanZoomPainter() = default;
PanZoomPainter::PanZoomPainter(PanZoomPainter&&) noexcept = default;
PanZoomPainter& PanZoomPainter::operator=(PanZoomPainter&&) noexcept = default;

void PanZoomPainter::paint(const Velmor::AV::Frame& source, const NormalisedRect& rect,
                           Velmor::AV::Frame& target) {
    requireComposing("Pan and zoom", {&target});
    if (!(rect.width > 0) || !(rect.height > 0))
        throw std::invalid_argument("Pan and zoom needs a rectangle of some width and height");
    const Velmor::AV::Size sourceSize{source.width(), source.height()};
    const NormalisedRect region =
        filledRegion(rect, sourceSize, Velmor::AV::Size{target.width(), target.height()});
    const Velmor::AV::Frame* planar = &source;
    Velmor::AV::Frame converted;
    if (source.format() != composingFormat() || Velmor::AV::isFullRange(source)) {
        converted =
            Velmor::AV::Frame::picture(sourceSize.width, sourceSize.height, composingFormat());
        d->converter.scale(source, converted);
        planar = &converted;
    }
    for (int index = 0; index < 3; ++index)
        resamplePlane(Velmor::AV::planeOf(*planar, index), Velmor::AV::planeOf(target, index),
                      region, d->rows);
}

} // namespace Effects
