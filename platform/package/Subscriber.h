#pragma once

#include <cstddef>
#include <tuple>

namespace PubSub {

// Receives one type of message.
template <class Message> class Receiver {
public:
    virtual ~Receiver() = default;
    virtual void receive(const Message& message) = 0;
};

// A subscriber of the listed message types, in the order given.
template <class... Messages> class Subscriber : public Receiver<Messages>... {
public:
    using Subscriptions = std::tuple<Messages...>;
    static constexpr std::size_t subscriptionCount = sizeof...(Messages);

    using Receiver<Messages>::receive...;
};

} // namespace PubSub
