#pragma once

#include <cstdint>

namespace Velmor::AV {

// A time base or a frame rate, as a fraction: the libraries' AVRational without their header.
struct Rational {
    int num = 0;
    int den = 1;

    bool operator==(const Rational& other) const { return num == other.num && den == other.den; }
    bool operator!=(const Rational& other) const { return !(*this == other); }
    double toDouble() const { return den ? static_cast<double>(num) / den : 0.0; }
};

// A timestamp from one time base to another, rounded to the nearest; an unknown timestamp
// (noTimestamp) stays unknown.
std::int64_t rescale(std::int64_t timestamp, Rational from, Rational to);

// The value of an unknown timestamp (AV_NOPTS_VALUE).
extern const std::int64_t noTimestamp;

} // namespace Velmor::AV
