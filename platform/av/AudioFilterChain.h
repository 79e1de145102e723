#pragma once

#include "platform/av/AudioBlock.h"
#include "platform/av/FilterStep.h"
#include "platform/av/Frame.h"

#include <memory>
#include <vector>

namespace Velmor::AV {

// A chain of libavfilter audio filters from one input to one output. Blocks go in timed in
// 1/rate of the input and come out as the filters give them, timed in 1/rate of the output:
// for filters that give a block for each they take (volume, afade) at once, for others
// (aresample, ebur128) when they have enough. One thread at a time.
class AudioFilterChain {
public:
    // Builds and configures the chain. An output's sample format below 0, or rate or channels
    // of 0, leave that to the filters. Throws MediaError "Can not set up the filter <name>:
    // <reason>" for an unknown filter or option or a value the filter refuses, and "Can not set
    // up the filters: <reason>" when the chain does not configure.
    AudioFilterChain(AudioShape input, const std::vector<FilterStep>& filters, AudioShape output);
    AudioFilterChain(const AudioFilterChain&) = delete;
    AudioFilterChain& operator=(const AudioFilterChain&) = delete;
    ~AudioFilterChain();

    // Hands a block over; the block is only read. Throws std::invalid_argument for a block of
    // another shape, MediaError "Can not filter samples: <reason>".
    void push(const Frame& block);
    // Ends the input: what the filters still hold comes out.
    void close();
    // The next block out; false when the filters have none ready, and at the end.
    bool pull(Frame& block);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::AV
