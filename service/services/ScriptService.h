#pragma once

#include "service/api/ServiceLoader.h"
#include "service/requests/DefaultServiceImpl.h"
#include "service/services/ScriptRequest.h"

namespace EditorService {

extern template class EDITORSERVICE_EXPORT DefaultServiceImpl<ScriptRequest>;

// Runs a script of commands, each as a further service made by the loader, up to
// ScriptRequest::jobs at once (no limit below 1), and merges their JSON values unchanged into
// one stream. The first failure of any kind ends the stream with the same exception object.
//
// The stream holds the loader's weak pointer, never the service, so it outlives this object.
// It has no single thread: values arrive on whichever thread each command emits on. A loader
// that is gone when a command's turn comes fails the stream with Error
// "The service loader is gone".
class EDITORSERVICE_EXPORT ScriptService : public DefaultServiceImpl<ScriptRequest> {
public:
    explicit ScriptService(std::weak_ptr<const ServiceLoader> serviceLoader);

    // "script": the name under which a loader knows this service.
    static QString serviceId();

    using DefaultServiceImpl<ScriptRequest>::run;
    rxcpp::observable<nlohmann::json>
    run(const rxcpp::observable<ScriptRequest>& requests) override;

private:
    std::weak_ptr<const ServiceLoader> serviceLoader;
};

} // namespace EditorService
