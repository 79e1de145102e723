#pragma once

#include <QByteArray>
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

// A bright spot on a dark ground followed through a moving picture: where it is in each frame,
// where a pan-and-zoom should put it, and how far apart the two lie. Written apart from the
// renderer, so that a test and a benchmark can hold the renderer's path against its definition.
// Header only, for the tests and the benchmarks alike.
namespace EditorService::Testing {

struct SpotPoint {
    double x = 0;
    double y = 0;
};

// A rectangle of a picture in its normalised coordinates.
struct ShownRect {
    double x = 0;
    double y = 0;
    double width = 1;
    double height = 1;
};

// The centre of the spot in each 8-bit grey frame packed in `frames` (row after row, frame after
// frame): the mean of the pixel centres within `reach` of the brightest pixel, each weighed by
// how much brighter than the frame's darkest pixel it is. Pixel (i, j) covers [i, i+1) x [j, j+1).
inline std::vector<SpotPoint> spotCentres(const QByteArray& frames, int width, int height,
                                          int reach = 12) {
    std::vector<SpotPoint> centres;
    const int frameBytes = width * height;
    for (int offset = 0; offset + frameBytes <= frames.size(); offset += frameBytes) {
        const auto* grey = reinterpret_cast<const std::uint8_t*>(frames.constData()) + offset;
        const auto brightest = std::max_element(grey, grey + frameBytes) - grey;
        const int dark = *std::min_element(grey, grey + frameBytes);
        const int peakX = static_cast<int>(brightest % width);
        const int peakY = static_cast<int>(brightest / width);
        double sum = 0, sumX = 0, sumY = 0;
        for (int y = std::max(0, peakY - reach); y < std::min(height, peakY + reach + 1); ++y) {
            for (int x = std::max(0, peakX - reach); x < std::min(width, peakX + reach + 1); ++x) {
                const double weight = grey[y * width + x] - dark;
                sum += weight;
                sumX += weight * (x + 0.5);
                sumY += weight * (y + 0.5);
            }
        }
        centres.push_back({sumX / sum, sumY / sum});
    }
    return centres;
}

// The cubic ease in and out: slow at both ends, half-way at half the time.
inline double easeInOut(double progress) {
    const double t = std::clamp(progress, 0.0, 1.0);
    return t < 0.5 ? 4 * t * t * t : 1 - 4 * (1 - t) * (1 - t) * (1 - t);
}

// The rectangle a move from `from` to `to` shows when `eased` of it is done.
inline ShownRect shownAt(const ShownRect& from, const ShownRect& to, double eased) {
    const auto along = [eased](double a, double b) { return a + (b - a) * eased; };
    return {along(from.x, to.x), along(from.y, to.y), along(from.width, to.width),
            along(from.height, to.height)};
}

// Where a point of the source (in its pixels, of a source of sourceWidth x sourceHeight) lands
// in an output of outputWidth x outputHeight showing `shown` of the source, stretched to fill it.
inline SpotPoint placedAt(const SpotPoint& source, int sourceWidth, int sourceHeight,
                          const ShownRect& shown, int outputWidth, int outputHeight) {
    return {(source.x / sourceWidth - shown.x) / shown.width * outputWidth,
            (source.y / sourceHeight - shown.y) / shown.height * outputHeight};
}

// The root mean square of the distances between the points of two paths of equal length.
inline double rmsDistance(const std::vector<SpotPoint>& a, const std::vector<SpotPoint>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        sum += std::pow(a[i].x - b[i].x, 2) + std::pow(a[i].y - b[i].y, 2);
    return std::sqrt(sum
                     / static_cast<double>(std::max<std::size_t>(1, std::min(a.size(), b.size()))));
}

} // namespace EditorService::Testing
