#pragma once

namespace Velmor::AV {

// The send and receive rhythm of a codec, written once for every decoder (packets in, frames
// out) and encoder (frames in, packets out): hands `input` over, or with null starts the drain,
// and gives each output to `take` as it comes, until the codec has taken the input and has
// nothing more to give; after a drain, until it is drained. A codec that refuses the input while
// it holds outputs (EAGAIN) gives them out first and is then asked again.
//
// `take(output)` returns false to stop early: what the codec still holds stays there, and pump
// returns false. `output` is the caller's handle that the codec fills, one output at a time;
// `take` may take it, leaving a fresh one behind (std::exchange(output, Frame())). Codec is
// anything with `bool send(Input*)` and `bool receive(Output&)` as Decoder and Encoder have them;
// their failures leave pump as they are.
template <typename Codec, typename Input, typename Output, typename Take>
bool pump(Codec& codec, Input* input, Output& output, Take&& take) {
    for (;;) {
        const bool taken = codec.send(input);
        while (codec.receive(output)) {
            if (!take(output))
                return false;
        }
        if (taken)
            return true;
    }
}

} // namespace Velmor::AV
