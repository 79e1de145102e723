#pragma once

#include "host/services/ShardRequest.h"
#include "service/api/ServiceLoader.h"
#include "service/requests/DefaultServiceImpl.h"

#include <memory>

// Runs one part of a script, for splitting it across the nodes of a farm: the commands whose
// position among the script's commands is index modulo count, read, run and failing exactly as
// the script service's are (a nested script runs whole in the part of its line). The parts of
// one script together emit each of its values once, unmarked. Every part reads, and so logs,
// the whole script.
class ShardService : public EditorService::DefaultServiceImpl<ShardRequest> {
public:
    explicit ShardService(std::weak_ptr<const EditorService::ServiceLoader> serviceLoader);

    // "shard".
    static QString serviceId();

    using DefaultServiceImpl<ShardRequest>::run;
    rxcpp::observable<nlohmann::json> run(const rxcpp::observable<ShardRequest>& requests) override;

private:
    std::weak_ptr<const EditorService::ServiceLoader> serviceLoader;
};
