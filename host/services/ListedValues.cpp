#include "host/services/ListedValues.h"

rxcpp::observable<nlohmann::json> listedValues(std::function<std::vector<nlohmann::json>()> make) {
    return rxcpp::observable<>::create<nlohmann::json>(
               [make](rxcpp::subscriber<nlohmann::json> subscriber) {
                   std::vector<nlohmann::json> values;
                   try {
                       values = make();
                   } catch (...) {
                       subscriber.on_error(std::current_exception());
                       return;
                   }
                   for (const auto& value : values) {
                       if (!subscriber.is_subscribed())
                           return;
                       subscriber.on_next(value);
                   }
                   subscriber.on_completed();
               })
        .as_dynamic();
}
