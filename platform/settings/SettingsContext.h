#pragma once

#include "platform/foundation/ioPath.h"

#include <memory>

namespace Velmor::App {
class ICustomizationManager;
class ISettingsManager;
} // namespace Velmor::App

// What the settings library is given of the application: the stores and the customization,
// as weak references, for their owner decides how long they live.
struct SettingsContext {
    std::weak_ptr<Velmor::App::ICustomizationManager> customizationManager;
    std::weak_ptr<Velmor::App::ISettingsManager> productSettings;
    std::weak_ptr<Velmor::App::ISettingsManager> applicationSettings;
    Velmor::ioPath settingsLocation;
};
