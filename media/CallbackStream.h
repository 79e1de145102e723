#pragma once

#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace EditorService {

// A stream of one value from a controller that calls back once with a result or a failure, as
// the file and thumbnail controllers do. `start` is called on the subscribing thread with the
// callback and a question the controller asks before the work (whether anybody still wants
// it); what start throws fails the stream there. The callback's result, shown by `describe`,
// is the stream's one value, followed by its completion; its failure ends the stream.
template <class Result>
rxcpp::observable<nlohmann::json>
callbackStream(std::function<void(std::function<void(const Result&, std::exception_ptr)> done,
                                  std::function<bool()> wanted)>
                   start,
               std::function<nlohmann::json(const Result&)> describe) {
    return rxcpp::observable<>::create<nlohmann::json>(
               [start, describe](rxcpp::subscriber<nlohmann::json> subscriber) {
                   try {
                       start(
                           [subscriber, describe](const Result& result, std::exception_ptr error) {
                               if (error) {
                                   subscriber.on_error(error);
                                   return;
                               }
                               subscriber.on_next(describe(result));
                               subscriber.on_completed();
                           },
                           [subscriber] { return subscriber.is_subscribed(); });
                   } catch (...) {
                       subscriber.on_error(std::current_exception());
                   }
               })
        .as_dynamic();
}

} // namespace EditorService
