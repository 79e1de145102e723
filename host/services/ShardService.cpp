#include "host/services/ShardService.h"

#include "service/CLIUtils.h"
#include "service/services/RunCommands.h"

#include <cstdint>

namespace {

// The commands at positions index, index + count, ... of a stream of commands, counted anew
// for each subscription. Commands arrive one by one on the main thread, so the count needs no
// lock.
rxcpp::observable<QStringList> partOf(const rxcpp::observable<QStringList>& commands, int index,
                                      int count) {
    return rxcpp::observable<>::create<QStringList>(
               [commands, index, count](rxcpp::subscriber<QStringList> subscriber) {
                   auto position = std::make_shared<std::int64_t>(-1);
                   commands
                       .filter([position, index, count](const QStringList&) {
                           return ++*position % count == index;
                       })
                       .subscribe(subscriber);
               })
        .as_dynamic();
}

} // namespace

ShardService::ShardService(std::weak_ptr<const EditorService::ServiceLoader> serviceLoader)
    : serviceLoader(std::move(serviceLoader)) {}

QString ShardService::serviceId() {
    return QStringLiteral("shard");
}

rxcpp::observable<nlohmann::json>
ShardService::run(const rxcpp::observable<ShardRequest>& requests) {
    const auto loader = serviceLoader;
    return requests
        .flat_map(
            [loader](const ShardRequest& request) {
                // In the script service's order: the limiter first, the script second.
                auto resource = std::make_shared<Velmor::rx::LimitedResource>(request.jobs);
                return EditorService::runCommands(
                    resource,
                    partOf(CLIUtils::openCommandScript(request.path), request.index, request.count),
                    loader);
            },
            rxcpp::util::take_at<1>(), rxcpp::identity_current_thread())
        .as_dynamic();
}
