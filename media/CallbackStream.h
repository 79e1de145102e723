#pragma once

#include "media/WaitingCall.h"

#include <exception>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <rxcpp/rx.hpp>

namespace EditorService {

// A stream of one value from a controller that calls back once with a result or a failure, as
// the file and thumbnail controllers do. `start` is called on the subscribing thread with the
// callback and a question the controller asks before the work (whether anybody still wants
// it); what start throws fails the stream there. The callback's result, shown by `describe`,
// is the stream's one value, followed by its completion; its failure ends the stream. With a
// `place`, the call waits in its line from the subscription to that question and emits its
// queued value meanwhile (see WaitingCall).
template <class Result>
rxcpp::observable<nlohmann::json>
callbackStream(std::function<void(std::function<void(const Result&, std::exception_ptr)> done,
                                  std::function<bool()> wanted)>
                   start,
               std::function<nlohmann::json(const Result&)> describe,
               std::optional<WaitingPlace> place = std::nullopt) {
    return rxcpp::observable<>::create<nlohmann::json>(
               [start, describe, place](rxcpp::subscriber<nlohmann::json> subscriber) {
                   const auto call = std::make_shared<WaitingCall>(std::move(subscriber), place);
                   try {
                       call->wait();
                       start(
                           [call, describe](const Result& result, std::exception_ptr error) {
                               if (error) {
                                   call->fail(error);
                                   return;
                               }
                               call->finish(describe(result));
                           },
                           [call] { return call->wanted(); });
                   } catch (...) {
                       call->fail(std::current_exception());
                   }
               })
        .as_dynamic();
}

} // namespace EditorService
