#pragma once

#include "platform/rxapp/LimitedResource.h"
#include "platform/rxapp/RxApp.h"

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

// The script service's use of the limiter: a function from a stream of commands to the merged
// stream of their JSON values. `start(command)` starts one command and gives its stream.
//
// Below a limit of 1 a command starts the moment it arrives. Otherwise it gets a subject of
// its own and a job on the queue, and the subject's observable goes back at once: the merge
// must hold an observable the moment the command arrives, while the command may start much
// later, and on another thread; the limiter watches the same subject to see the job end.
template <class Start> auto Velmor::rx::LimitedResource::useFor(Start start) {
    // With a limit of its own the limiter serves the queue, and starts jobs on a later turn of
    // the main thread; otherwise whoever serves the queue may start a job the moment it comes.
    const bool startsOnALaterTurn = state != nullptr;
    // Copies rather than `this`: copies of a subject share its state, so a command that
    // arrives while the owner lets go of the limiter on another thread touches nothing gone.
    return [limit = limit, jobQueue = jobQueue, start, startsOnALaterTurn](const auto& commands) {
        using Command = typename std::decay_t<decltype(commands)>::value_type;
        return commands.flat_map(
            [limit, jobQueue, start,
             startsOnALaterTurn](const Command& command) -> rxcpp::observable<nlohmann::json> {
                if (limit < 1)
                    return start(command);
                auto results = std::make_shared<rxcpp::subjects::subject<nlohmann::json>>(
                    rxcpp::composite_subscription());
                auto job = [command, start, results] {
                    try {
                        start(command).subscribe(results->get_subscriber());
                    } catch (...) {
                        results->get_subscriber().on_error(std::current_exception());
                    }
                    return results->get_observable()
                        .map([](const nlohmann::json&) { return 0; })
                        .as_dynamic();
                };
                // The merge subscribes to `results` as soon as this returns, and a subject
                // repeats no value. Queued from the main thread to a limiter that starts it on a
                // later turn, the job can't start before that. Otherwise it could, so it is
                // queued only once the merge listens.
                if (startsOnALaterTurn && RxApp::onMainThread()) {
                    jobQueue.get_subscriber().on_next(job);
                    return results->get_observable();
                }
                return rxcpp::observable<>::create<nlohmann::json>(
                           [results, jobQueue, job](rxcpp::subscriber<nlohmann::json> merge) {
                               results->get_observable().subscribe(merge);
                               if (!merge.is_subscribed())
                                   return;
                               jobQueue.get_subscriber().on_next(job);
                           })
                    .as_dynamic();
            },
            rxcpp::util::take_at<1>(), rxcpp::identity_current_thread());
    };
}
