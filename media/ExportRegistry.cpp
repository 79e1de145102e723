#include "media/ExportRegistry.h"

#include "media/ExportSession.h"
#include "media/WaitingLine.h"
#include "service/contexts/GlobalContextProvider.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <vector>

namespace EditorService {
namespace {

// Which provider has which registry. An entry goes when its provider is destroyed; the map
// itself, which lives to the end of the process, holds nothing of a runtime that ended.
struct Registries {
    std::mutex mutex;
    std::map<const GlobalContextProvider*, std::shared_ptr<ExportRegistry>> byProvider;
};

Registries& registries() {
    static auto* all = new Registries;
    return *all;
}

} // namespace

class ExportRegistry::Private {
public:
    mutable std::mutex mutex;
    std::vector<std::weak_ptr<ExportSession>> sessions;
    WaitingLine line;
};

ExportRegistry::ExportRegistry()
    : d(std::make_unique<Private>()) {}

ExportRegistry::~ExportRegistry() = default;

std::shared_ptr<ExportRegistry> ExportRegistry::of(GlobalContextProvider& provider) {
    auto& all = registries();
    std::lock_guard<std::mutex> lock(all.mutex);
    auto& registry = all.byProvider[&provider];
    if (registry)
        return registry;
    registry = std::make_shared<ExportRegistry>();
    // Without a context object the lambda runs on the destroying thread, once the provider's
    // runtime has gone: an export still waiting for it then ends cancelled.
    QObject::connect(&provider, &QObject::destroyed, [key = &provider] {
        std::shared_ptr<ExportRegistry> gone;
        {
            auto& all = registries();
            std::lock_guard<std::mutex> lock(all.mutex);
            const auto found = all.byProvider.find(key);
            if (found == all.byProvider.end())
                return;
            gone = std::move(found->second);
            all.byProvider.erase(found);
        }
        gone->cancelAll();
    });
    return registry;
}

std::shared_ptr<ExportRegistry> ExportRegistry::find(const GlobalContextProvider* provider) {
    auto& all = registries();
    std::lock_guard<std::mutex> lock(all.mutex);
    const auto found = all.byProvider.find(provider);
    return found == all.byProvider.end() ? nullptr : found->second;
}

void ExportRegistry::add(const std::shared_ptr<ExportSession>& session) {
    std::lock_guard<std::mutex> lock(d->mutex);
    auto& sessions = d->sessions;
    sessions.erase(std::remove_if(sessions.begin(), sessions.end(),
                                  [](const auto& entry) { return entry.expired(); }),
                   sessions.end());
    sessions.push_back(session);
}

void ExportRegistry::cancelAll() {
    std::vector<std::shared_ptr<ExportSession>> live;
    {
        std::lock_guard<std::mutex> lock(d->mutex);
        for (const auto& entry : d->sessions) {
            if (auto session = entry.lock())
                live.push_back(std::move(session));
        }
    }
    for (const auto& session : live)
        session->cancel();
}

std::uint64_t ExportRegistry::enterQueue() {
    return d->line.enter();
}

void ExportRegistry::leaveQueue(std::uint64_t place) {
    d->line.leave(place);
}

int ExportRegistry::ahead(std::uint64_t place) const {
    return d->line.ahead(place);
}

} // namespace EditorService
