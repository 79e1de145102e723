#pragma once

#include "media/WaitingPlace.h"

#include <exception>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <rxcpp/rx.hpp>

namespace EditorService {

// One call to a controller that queues its work, from the subscription to the stream's one
// end. From wait until the work is asked whether it is still wanted (its turn) or the call
// ends, it holds a place in the line and emits the queued value every QueuedValueTimer::gap.
// Safe from any thread.
class WaitingCall : public std::enable_shared_from_this<WaitingCall> {
public:
    WaitingCall(rxcpp::subscriber<nlohmann::json> subscriber, std::optional<WaitingPlace> place);
    WaitingCall(const WaitingCall&) = delete;
    WaitingCall& operator=(const WaitingCall&) = delete;
    ~WaitingCall();

    // Takes a place in the line, behind every call that took one before, and starts the queued
    // values; called before the work is handed over. An unsubscription leaves the line.
    void wait();
    // Whether the subscriber still wants the work, asked just before it runs: the call waits no
    // longer either way.
    bool wanted();
    // The stream's one value, then its completion.
    void finish(const nlohmann::json& value);
    void fail(std::exception_ptr error);

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace EditorService
