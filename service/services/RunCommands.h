#pragma once

#include "platform/rxapp/LimitedResource.h"
#include "service/api/EditorServiceExport.h"
#include "service/api/ServiceLoader.h"

#include <QStringList>
#include <memory>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace EditorService {

// Runs a stream of command lines (application path first, as CLIUtils delivers them) the way
// the script service runs a script's: each line becomes a ServiceRunRequest, its service is
// made by the loader and run, as many at once as `resource` allows, and the values of all
// commands are merged unchanged into one stream. The first failure of any kind ends it with
// the same exception object. The returned chain keeps the limiter alive as long as it lives.
EDITORSERVICE_EXPORT rxcpp::observable<nlohmann::json>
runCommands(const std::shared_ptr<Velmor::rx::LimitedResource>& resource,
            const rxcpp::observable<QStringList>& commands,
            std::weak_ptr<const ServiceLoader> serviceLoader);

} // namespace EditorService
