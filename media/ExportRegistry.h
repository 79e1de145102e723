#pragma once

#include <cstdint>
#include <memory>

namespace EditorService {

class ExportSession;
class GlobalContextProvider;

// The exports of one runtime that have not ended, which a host's stop cancels, and the order in
// which those waiting for a render-job place wait. A registry serves one GlobalContextProvider
// and goes with it, so that a new runtime starts with none; an export of it that has not ended
// then (one that waited for its input or a place) ends cancelled. Safe from any thread.
class ExportRegistry {
public:
    ExportRegistry();
    ExportRegistry(const ExportRegistry&) = delete;
    ExportRegistry& operator=(const ExportRegistry&) = delete;
    ~ExportRegistry();

    // The provider's registry, made on first use; its exports hold it while they end.
    static std::shared_ptr<ExportRegistry> of(GlobalContextProvider& provider);
    // The provider's registry; null when none was made or the provider is gone.
    static std::shared_ptr<ExportRegistry> find(const GlobalContextProvider* provider);

    // Held weakly: an export that ended and was let go leaves by itself.
    void add(const std::shared_ptr<ExportSession>& session);
    // Cancels every export that has not ended, in the order they came, outside the lock.
    void cancelAll();

    // A place in the queue for render-job places, behind every place taken before.
    std::uint64_t enterQueue();
    // Leaves the queue; a place that left already changes nothing.
    void leaveQueue(std::uint64_t place);
    // How many places still in the queue come before `place`.
    int ahead(std::uint64_t place) const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace EditorService
