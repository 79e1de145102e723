#pragma once

#include "platform/av/Frame.h"

#include <cstdint>
#include <vector>

namespace Mixing {

// A gain that changes over the output's samples: a value at every `hop`-th sample from 0 on,
// a straight line between two values, the last value after it. Each sample's gain depends on
// its index alone, so a render that starts anywhere weighs the sample alike. An empty curve
// leaves samples as they are.
class GainCurve {
public:
    explicit GainCurve(int hop = 1);

    int hop() const { return step; }
    bool empty() const { return values.empty(); }
    std::size_t size() const { return values.size(); }
    // The value at sample index * hop; linear, 1 is unity.
    float value(std::size_t index) const { return values[index]; }
    void append(float gain);
    // Sets value `index` (< size()).
    void set(std::size_t index, float gain) { values[index] = gain; }

    float gainAt(std::int64_t sample) const;
    // Multiplies each sample of a planar float block, whose first sample is output sample
    // `at`, by its gain.
    void apply(Velmor::AV::Frame& block, std::int64_t at) const;

private:
    int step;
    std::vector<float> values;
};

} // namespace Mixing
