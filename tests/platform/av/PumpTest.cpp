#include "platform/av/Pump.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

using Velmor::AV::pump;

namespace {

// A codec that turns each input n into two outputs (n*10, n*10+1), gives out at most one output
// after each send, refuses an input while it holds `capacity` outputs or more, and after a null
// input drains what it holds.
class FakeCodec {
public:
    explicit FakeCodec(std::size_t capacity)
        : capacity(capacity) {}

    bool send(const int* input) {
        ++sends;
        givenSinceSend = 0;
        if (!input) {
            draining = true;
            return true;
        }
        if (held.size() >= capacity)
            return false;
        held.push_back(*input * 10);
        held.push_back(*input * 10 + 1);
        return true;
    }

    bool receive(int& output) {
        if (held.empty() || (!draining && givenSinceSend >= 1))
            return false;
        ++givenSinceSend;
        output = held.front();
        held.erase(held.begin());
        return true;
    }

    std::size_t capacity;
    std::vector<int> held;
    bool draining = false;
    int sends = 0;
    int givenSinceSend = 0;
};

} // namespace

TEST(PumpTest, EveryInputComesOutInOrderOnceTheCodecIsDrained) {
    FakeCodec codec(4);
    std::vector<int> outputs;
    int output = 0;
    auto take = [&](int& value) {
        outputs.push_back(value);
        return true;
    };
    for (int input = 1; input <= 5; ++input)
        EXPECT_TRUE(pump(codec, &input, output, take));
    EXPECT_TRUE(pump(codec, static_cast<int*>(nullptr), output, take));
    EXPECT_EQ(outputs, (std::vector<int>{10, 11, 20, 21, 30, 31, 40, 41, 50, 51}));
    EXPECT_TRUE(codec.held.empty());
}

TEST(PumpTest, ARefusedInputIsSentAgainAfterTheCodecGaveOutWhatItHeld) {
    FakeCodec codec(2);
    int output = 0;
    std::vector<int> outputs;
    auto take = [&](int& value) {
        outputs.push_back(value);
        return true;
    };
    for (int input = 1; input <= 2; ++input)
        pump(codec, &input, output, take);
    // Full: the first send is refused, an output is taken, the second send succeeds.
    codec.sends = 0;
    int input = 3;
    EXPECT_TRUE(pump(codec, &input, output, take));
    EXPECT_EQ(codec.sends, 2);
    EXPECT_EQ(outputs, (std::vector<int>{10, 11, 20, 21}));
}

TEST(PumpTest, ATakeThatRefusesStopsThePumpAndLeavesTheRestInTheCodec) {
    FakeCodec codec(2);
    int output = 0;
    int input = 1;
    std::vector<int> outputs;
    EXPECT_FALSE(pump(codec, &input, output, [&](int& value) {
        outputs.push_back(value);
        return false;
    }));
    EXPECT_EQ(outputs, std::vector<int>{10});
    EXPECT_EQ(codec.held, std::vector<int>{11});
}

TEST(PumpTest, AFailureOfTheTakeLeavesThePumpAsItIs) {
    FakeCodec codec(2);
    int output = 0;
    int input = 1;
    EXPECT_THROW(pump(codec, &input, output, [](int&) -> bool { throw std::runtime_error("x"); }),
                 std::runtime_error);
}
