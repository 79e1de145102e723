#include "platform/mix/PeakLimiter.h"

#include <algorithm>
#include <cmath>

namespace Mixing {
namespace {

constexpr double fallPerHopDb = 6;
constexpr double risePerHopDb = 1;
constexpr double mostGivenBackDb = 6;
constexpr int rounds = 5;

double linear(double decibels) {
    return std::pow(10.0, decibels / 20.0);
}

// The limiting gains, relative to the raised mix, at each end of each hop.
std::vector<double> limiting(const std::vector<float>& peaks, double gainDb, double ceilingDb) {
    const double gain = linear(gainDb);
    const double ceiling = linear(ceilingDb);
    std::vector<double> values(peaks.size() + 1, 1.0);
    for (std::size_t index = 0; index < peaks.size(); ++index) {
        const double allowed = peaks[index] * gain > ceiling ? ceiling / (peaks[index] * gain) : 1;
        values[index] = std::min(values[index], allowed);
        values[index + 1] = std::min(values[index + 1], allowed);
    }
    // Both passes only lower values, so no hop passes the ceiling.
    const double fall = linear(fallPerHopDb);
    for (std::size_t index = values.size() - 1; index > 0; --index)
        values[index - 1] = std::min(values[index - 1], values[index] * fall);
    const double rise = linear(risePerHopDb);
    for (std::size_t index = 1; index < values.size(); ++index)
        values[index] = std::min(values[index], values[index - 1] * rise);
    return values;
}

// What the limiting takes from the power of the hops that count, in dB (0 or less).
double lossDb(const std::vector<double>& values, const std::vector<float>& powers) {
    double sum = 0;
    std::size_t counted = 0;
    for (const float power : powers) {
        sum += power;
        counted += power > 0;
    }
    const double gate = counted ? sum / counted / 10 : 0;
    double kept = 0;
    double whole = 0;
    for (std::size_t index = 0; index < powers.size(); ++index) {
        if (powers[index] <= gate || powers[index] <= 0)
            continue;
        const double from = values[index];
        const double to = values[index + 1];
        // The mean square of a straight line from `from` to `to`.
        kept += powers[index] * (from * from + from * to + to * to) / 3;
        whole += powers[index];
    }
    return whole > 0 ? 10 * std::log10(kept / whole) : 0;
}

} // namespace

GainCurve limitedGain(const HopLevels& levels, int hop, double gainDb, double ceilingDb) {
    double raisedDb = gainDb;
    std::vector<double> values = limiting(levels.peaks, raisedDb, ceilingDb);
    for (int round = 0; round < rounds; ++round) {
        const double wanted =
            std::min(gainDb - lossDb(values, levels.powers), gainDb + mostGivenBackDb);
        if (std::abs(wanted - raisedDb) < 0.01)
            break;
        raisedDb = wanted;
        values = limiting(levels.peaks, raisedDb, ceilingDb);
    }
    GainCurve curve(hop);
    for (const double value : values)
        curve.append(static_cast<float>(value * linear(raisedDb)));
    return curve;
}

} // namespace Mixing
