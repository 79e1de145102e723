#pragma once

#include <atomic>
#include <string>

namespace Velmor::Proc {

// Follows the start of the engine: told of every plug-in as it is loaded, on the loader's
// thread. Reference counted for boost::intrusive_ptr.
class ICoreTracker {
public:
    ICoreTracker() = default;
    ICoreTracker(const ICoreTracker&) = delete;
    ICoreTracker& operator=(const ICoreTracker&) = delete;
    virtual ~ICoreTracker();

    virtual void OnPluginLoaded(const std::string& pluginName) = 0;

    friend void intrusive_ptr_add_ref(ICoreTracker* tracker);
    friend void intrusive_ptr_release(ICoreTracker* tracker);

private:
    std::atomic<int> references{0};
};

} // namespace Velmor::Proc
