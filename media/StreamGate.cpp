#include "media/StreamGate.h"

namespace EditorService {

StreamGate::StreamGate(rxcpp::subscriber<nlohmann::json> subscriber)
    : subscriber(std::move(subscriber)) {}

bool StreamGate::next(const nlohmann::json& value) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    if (ended)
        return false;
    subscriber.on_next(value);
    return true;
}

bool StreamGate::nextWhile(const std::function<bool()>& still,
                           const std::function<nlohmann::json()>& value) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    if (ended || !still())
        return false;
    subscriber.on_next(value());
    return true;
}

bool StreamGate::complete(const std::optional<nlohmann::json>& last) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    if (ended)
        return false;
    ended = true;
    if (last)
        subscriber.on_next(*last);
    subscriber.on_completed();
    return true;
}

bool StreamGate::fail(std::exception_ptr error) {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    if (ended)
        return false;
    ended = true;
    subscriber.on_error(error);
    return true;
}

bool StreamGate::hasEnded() const {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    return ended;
}

bool StreamGate::isSubscribed() const {
    std::lock_guard<std::recursive_mutex> lock(mutex);
    return !ended && subscriber.is_subscribed();
}

void StreamGate::onUnsubscribe(std::function<void()> action) {
    subscriber.add(std::move(action));
}

} // namespace EditorService
