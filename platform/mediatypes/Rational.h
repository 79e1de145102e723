#pragma once

namespace Velmor::AV {

// A time base or a frame rate, as a fraction: the media libraries' AVRational without their
// header.
struct Rational {
    int num = 0;
    int den = 1;

    bool operator==(const Rational& other) const { return num == other.num && den == other.den; }
    bool operator!=(const Rational& other) const { return !(*this == other); }
    double toDouble() const { return den ? static_cast<double>(num) / den : 0.0; }
};

} // namespace Velmor::AV
