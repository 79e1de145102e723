#include "host/HostServices.h"

#include "host/services/EchoService.h"
#include "host/services/FailService.h"
#include "host/services/NoopService.h"
#include "host/services/PresetService.h"
#include "host/services/PresetsService.h"
#include "host/services/RuntimeService.h"
#include "host/services/TickService.h"
#include "service/api/ServiceLoader.h"
#include "service/services/ScriptService.h"

using namespace EditorService;

namespace {

template <class Service>
void add(ServiceLoader& loader, const TimeLimitedService::Expiry& expiry, const QString& summary)
{
    const QString name = Service::serviceId();
    loader.registerService(name, summary, [name, expiry](std::weak_ptr<const ServiceLoader> self) {
        std::shared_ptr<AbstractService> service;
        if constexpr (std::is_constructible_v<Service, std::weak_ptr<const ServiceLoader>>)
            service = std::make_shared<Service>(std::move(self));
        else
            service = std::make_shared<Service>();
        return std::make_shared<TimeLimitedService>(name, std::move(service), expiry);
    });
}

} // namespace

void registerHostServices(ServiceLoader& loader, const TimeLimitedService::Expiry& expiry)
{
    add<EchoService>(loader, expiry, QStringLiteral("Emit the arguments it was given as one value"));
    add<FailService>(loader, expiry, QStringLiteral("Fail with --message after --after milliseconds"));
    add<NoopService>(loader, expiry, QStringLiteral("Emit one value and complete, for measuring"));
    add<PresetService>(loader, expiry,
                       QStringLiteral("Build an export preset from --preset and its overrides"));
    add<PresetsService>(loader, expiry, QStringLiteral("Emit each available export preset"));
    add<RuntimeService>(loader, expiry,
                        QStringLiteral("Start the editor runtime's contexts named by --require"));
    add<ScriptService>(loader, expiry, QStringLiteral("Execute commands from script"));
    add<TickService>(loader, expiry,
                     QStringLiteral("Emit {\"tick\": i} every --interval milliseconds, --count times"));
}
