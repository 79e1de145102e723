#pragma once

#include "service/api/AbstractService.h"
#include "tests/service/services/ProbeRequest.h"

#include <functional>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>
#include <vector>

namespace EditorService::Testing {

// A wrapped service whose streams the test supplies: every request it receives is recorded, and
// answered with the stream that `streamFor` gives for it. Its requests are ProbeRequests.
class ControlledService : public AbstractService {
public:
    using StreamFor =
        std::function<rxcpp::observable<nlohmann::json>(const std::shared_ptr<Request>&)>;

    explicit ControlledService(StreamFor streamFor)
        : state(std::make_shared<State>()) {
        state->streamFor = std::move(streamFor);
    }

    using AbstractService::run;

    std::unique_ptr<AbstractRequestSerializer> requestSerializer() const override {
        return std::make_unique<ProbeRequest::Serializer>();
    }

    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override {
        const auto state = this->state;
        return requests
            .flat_map([state](const std::shared_ptr<Request>& request) {
                {
                    const std::lock_guard<std::mutex> lock(state->mutex);
                    state->received.push_back(request);
                }
                return state->streamFor(request);
            })
            .as_dynamic();
    }

    std::vector<std::shared_ptr<Request>> received() const {
        const std::lock_guard<std::mutex> lock(state->mutex);
        return state->received;
    }

private:
    struct State {
        std::mutex mutex;
        std::vector<std::shared_ptr<Request>> received;
        StreamFor streamFor;
    };
    std::shared_ptr<State> state;
};

} // namespace EditorService::Testing
