#pragma once

#include "service/api/AbstractRequestSerializer.h"
#include "service/api/AbstractService.h"
#include "service/api/Error.h"
#include "service/api/Request.h"

namespace EditorService::Testing {

// A request of one number, read from the first argument behind the program path.
struct CountRequest : Request {
    int count = 0;
    std::unique_ptr<AbstractRequestSerializer> serializer() const override;
};

class CountSerializer : public AbstractRequestSerializer {
public:
    std::unique_ptr<Request> loadFromCli(const QStringList& arguments) override {
        auto request = std::make_unique<CountRequest>();
        bool isNumber = false;
        request->count = arguments.value(1).toInt(&isNumber);
        if (!isNumber)
            throw Error("count expected");
        return request;
    }
    std::unique_ptr<Request> loadFromJson(const nlohmann::json& value) override {
        auto request = std::make_unique<CountRequest>();
        request->count = value.at("count").get<int>();
        return request;
    }
    QStringList toCli(const Request& request) const override {
        return {QStringLiteral("app-path-stub"),
                QString::number(dynamic_cast<const CountRequest&>(request).count)};
    }
    nlohmann::json toJson(const Request& request) const override {
        return {{"count", dynamic_cast<const CountRequest&>(request).count}};
    }
};

inline std::unique_ptr<AbstractRequestSerializer> CountRequest::serializer() const {
    return std::make_unique<CountSerializer>();
}

// Emits {"n": 1} .. {"n": count} for each request, then completes.
class CountingService : public AbstractService {
public:
    using AbstractService::run;

    std::unique_ptr<AbstractRequestSerializer> requestSerializer() const override {
        return std::make_unique<CountSerializer>();
    }

    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<std::shared_ptr<Request>>& requests) override {
        return requests
            .flat_map([](const std::shared_ptr<Request>& request) {
                const int count = dynamic_cast<const CountRequest&>(*request).count;
                return rxcpp::observable<>::create<nlohmann::json>(
                           [count](rxcpp::subscriber<nlohmann::json> subscriber) {
                               for (int n = 1; n <= count; ++n)
                                   subscriber.on_next(nlohmann::json{{"n", n}});
                               subscriber.on_completed();
                           })
                    .as_dynamic();
            })
            .as_dynamic();
    }
};

} // namespace EditorService::Testing
