#pragma once

#include "service/api/EditorServiceExport.h"
#include "service/api/ServiceLoader.h"

#include <QStringList>
#include <memory>
#include <nlohmann/json.hpp>
#include <rxcpp/rx.hpp>

namespace EditorService {

// Runs a stream of command lines (application path first, as CLIUtils delivers them) the way
// the script service runs a script's: each line becomes a ServiceRunRequest, its service is
// made by the loader and run, up to `jobs` at once (no limit below 1), and the values of all
// commands are merged unchanged into one stream. The first failure of any kind ends it with
// the same exception object. The limiter is made here, once per call, and lives as long as
// the returned chain does.
EDITORSERVICE_EXPORT rxcpp::observable<nlohmann::json>
runCommands(const rxcpp::observable<QStringList>& commands, int jobs,
            std::weak_ptr<const ServiceLoader> serviceLoader);

} // namespace EditorService
