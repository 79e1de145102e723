#include "media/WaitingCall.h"

#include "media/QueuedValueTimer.h"
#include "media/StreamGate.h"

#include <mutex>

namespace EditorService {

class WaitingCall::Private {
public:
    Private(rxcpp::subscriber<nlohmann::json> subscriber, std::optional<WaitingPlace> place)
        : gate(std::move(subscriber))
        , place(std::move(place)) {
        if (this->place)
            ticks.emplace(this->place->timer);
    }

    StreamGate gate;
    const std::optional<WaitingPlace> place;
    std::optional<QueuedValueTimer> ticks;

    std::mutex mutex;
    bool waiting = false;
    std::uint64_t ticket = 0;

    bool isWaiting() {
        std::lock_guard<std::mutex> lock(mutex);
        return waiting;
    }

    bool emitQueued() {
        return gate.nextWhile([this] { return isWaiting(); },
                              [this] { return place->queued(place->line->ahead(ticket)); });
    }

    void stopWaiting() {
        {
            std::lock_guard<std::mutex> lock(mutex);
            if (!waiting)
                return;
            waiting = false;
            place->line->leave(ticket);
        }
        ticks->stop();
    }
};

WaitingCall::WaitingCall(rxcpp::subscriber<nlohmann::json> subscriber,
                         std::optional<WaitingPlace> place)
    : d(std::make_unique<Private>(std::move(subscriber), std::move(place))) {}

WaitingCall::~WaitingCall() = default;

void WaitingCall::wait() {
    if (!d->place)
        return;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        d->ticket = d->place->line->enter();
        d->waiting = true;
    }
    std::weak_ptr<WaitingCall> weak = shared_from_this();
    d->ticks->start([weak] {
        const auto call = weak.lock();
        return call && call->d->emitQueued();
    });
    d->gate.onUnsubscribe([weak] {
        if (const auto call = weak.lock())
            call->d->stopWaiting();
    });
}

bool WaitingCall::wanted() {
    if (d->place)
        d->stopWaiting();
    return d->gate.isSubscribed();
}

void WaitingCall::finish(const nlohmann::json& value) {
    if (d->place)
        d->stopWaiting();
    d->gate.complete(value);
}

void WaitingCall::fail(std::exception_ptr error) {
    if (d->place)
        d->stopWaiting();
    d->gate.fail(std::move(error));
}

} // namespace EditorService
