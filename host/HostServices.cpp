#include "host/HostServices.h"

#include "host/services/ContentService.h"
#include "host/services/EchoService.h"
#include "host/services/FailService.h"
#include "host/services/NoopService.h"
#include "host/services/PresetService.h"
#include "host/services/PresetsService.h"
#include "host/services/RuntimeService.h"
#include "host/services/ShardService.h"
#include "host/services/TickService.h"
#include "media/ExportService.h"
#include "media/JoinService.h"
#include "media/ProbeService.h"
#include "media/SegmentService.h"
#include "media/ThumbnailService.h"
#include "service/api/Error.h"
#include "service/api/ServiceLoader.h"
#include "service/services/ScriptService.h"

using namespace EditorService;

namespace {

constexpr int maximumScriptNesting = 16;

// `commands` is the loader that makes the commands of a script made here.
template <class Service>
void add(ServiceLoader& loader, const TimeLimitedService::Expiry& expiry, const QString& summary,
         std::weak_ptr<const ServiceLoader> commands = {}) {
    const QString name = Service::serviceId();
    loader.registerService(
        name, summary, [name, expiry, commands](std::weak_ptr<const ServiceLoader>) {
            std::shared_ptr<AbstractService> service;
            if constexpr (std::is_constructible_v<Service, std::weak_ptr<const ServiceLoader>>) {
                if (commands.expired()) {
                    throw Error(QStringLiteral("Scripts nest deeper than %1 levels")
                                    .arg(maximumScriptNesting)
                                    .toStdString());
                }
                service = std::make_shared<Service>(commands);
            } else {
                service = std::make_shared<Service>();
            }
            return std::make_shared<TimeLimitedService>(name, std::move(service), expiry);
        });
}

void registerHostServices(ServiceLoader& loader, const TimeLimitedService::Expiry& expiry,
                          std::weak_ptr<const ServiceLoader> commands) {
    add<ContentService>(loader, expiry,
                        QStringLiteral("List what a project may name: transitions, pan-zoom, "
                                       "overlays or themes"));
    add<EchoService>(loader, expiry,
                     QStringLiteral("Emit the arguments it was given as one value"));
    add<ExportService>(loader, expiry,
                       QStringLiteral("Export a video file with a preset to --output"));
    add<FailService>(loader, expiry,
                     QStringLiteral("Fail with --message after --after milliseconds"));
    add<JoinService>(loader, expiry,
                     QStringLiteral("Join the parts that segment made in a folder into --output"));
    add<NoopService>(loader, expiry, QStringLiteral("Emit one value and complete, for measuring"));
    add<PresetService>(loader, expiry,
                       QStringLiteral("Build an export preset from --preset and its overrides"));
    add<PresetsService>(loader, expiry, QStringLiteral("Emit each available export preset"));
    add<ProbeService>(loader, expiry,
                      QStringLiteral("Describe a media file: container, duration and streams"));
    add<RuntimeService>(loader, expiry,
                        QStringLiteral("Start the editor runtime's contexts named by --require"));
    add<ScriptService>(loader, expiry, QStringLiteral("Execute commands from script"), commands);
    add<SegmentService>(
        loader, expiry,
        QStringLiteral("Render part --index of --count of an export, or its audio, into --output"));
    add<ShardService>(loader, expiry,
                      QStringLiteral("Execute part --index of --count of the commands from script"),
                      std::move(commands));
    add<ThumbnailService>(
        loader, expiry,
        QStringLiteral("Write the frame at --at of a video as a PNG or JPEG picture"));
    add<TickService>(
        loader, expiry,
        QStringLiteral("Emit {\"tick\": i} every --interval milliseconds, --count times"));
}

} // namespace

std::vector<std::shared_ptr<ServiceLoader>>
makeHostLoaders(const TimeLimitedService::Expiry& expiry) {
    std::vector<std::shared_ptr<ServiceLoader>> loaders(maximumScriptNesting + 1);
    for (auto& loader : loaders)
        loader = std::make_shared<ServiceLoader>();
    for (std::size_t level = 0; level < loaders.size(); ++level) {
        const auto commands = level + 1 < loaders.size() ? loaders[level + 1] : nullptr;
        registerHostServices(*loaders[level], expiry, commands);
    }
    return loaders;
}
