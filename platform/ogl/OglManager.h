#pragma once

#include <atomic>

namespace Velmor::Ogl {

// The process's OpenGL set-up. Initialize and Deinitialize may be called in any state:
// each sets the state it names.
class OglManager {
public:
    static OglManager& GetInstance();

    OglManager(const OglManager&) = delete;
    OglManager& operator=(const OglManager&) = delete;

    bool IsInitialized() const;
    void Initialize();
    void Deinitialize();

private:
    OglManager() = default;

    std::atomic<bool> initialized{false};
};

} // namespace Velmor::Ogl
