#pragma once

#include <exception>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <rxcpp/rx.hpp>

namespace EditorService {

// The one way to a request's subscriber: values one at a time, in the order they pass, then
// exactly one end, a completion or a failure, whichever threads deliver; whatever comes after
// the end goes nowhere. The gate is held while a value or the end is delivered, and may be
// taken again on that thread: a subscriber that unsubscribes inside on_next ends nothing twice.
class StreamGate {
public:
    explicit StreamGate(rxcpp::subscriber<nlohmann::json> subscriber);
    StreamGate(const StreamGate&) = delete;
    StreamGate& operator=(const StreamGate&) = delete;

    // False when the stream has ended: the value went nowhere.
    bool next(const nlohmann::json& value);
    // Delivers what `value` makes only while `still` holds, both asked with the gate held, so
    // that no other value or end passes between the answer and the value. False when nothing
    // was delivered.
    bool nextWhile(const std::function<bool()>& still,
                   const std::function<nlohmann::json()>& value);
    // Delivers `last`, when there is one, and completes. False when the stream had ended.
    bool complete(const std::optional<nlohmann::json>& last = std::nullopt);
    // False when the stream had ended: the failure went nowhere.
    bool fail(std::exception_ptr error);
    bool hasEnded() const;
    // Whether anybody still listens: false once the stream has ended or the subscriber left.
    bool isSubscribed() const;

    // The subscriber's lifetime, to hang what an unsubscription must do on.
    void onUnsubscribe(std::function<void()> action);

private:
    mutable std::recursive_mutex mutex;
    bool ended = false;
    rxcpp::subscriber<nlohmann::json> subscriber;
};

} // namespace EditorService
