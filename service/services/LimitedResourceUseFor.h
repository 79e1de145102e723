#pragma once

#include "platform/rxapp/LimitedResource.h"

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
    // Copies rather than `this`: copies of a subject share its state, so a command that
    // arrives while the owner lets go of the limiter on another thread touches nothing gone.
    return [limit = limit, jobQueue = jobQueue, start](const auto& commands) {
        using Command = typename std::decay_t<decltype(commands)>::value_type;
        return commands.flat_map(
            [limit, jobQueue, start](const Command& command) -> rxcpp::observable<nlohmann::json> {
                if (limit < 1)
                    return start(command);
                auto results = std::make_shared<rxcpp::subjects::subject<nlohmann::json>>(
                    rxcpp::composite_subscription());
                // The job is queued once the merge listens to `results`: a subject repeats no
                // value, so a job that starts at once on another thread must find it listening.
                // It is made only then, so that a queued command holds one copy of it, the queue's.
                return rxcpp::observable<>::create<nlohmann::json>(
                           [command, start, results,
                            jobQueue](rxcpp::subscriber<nlohmann::json> merge) {
                               results->get_observable().subscribe(merge);
                               if (!merge.is_subscribed())
                                   return;
                               jobQueue.get_subscriber().on_next([command, start, results] {
                                   try {
                                       start(command).subscribe(results->get_subscriber());
                                   } catch (...) {
                                       results->get_subscriber().on_error(std::current_exception());
                                   }
                                   return results->get_observable()
                                       .map([](const nlohmann::json&) { return 0; })
                                       .as_dynamic();
                               });
                           })
                    .as_dynamic();
            },
            rxcpp::util::take_at<1>(), rxcpp::identity_current_thread());
    };
}
