#include "platform/settings/ISettingsManager.h"

namespace Velmor::App {

ISettingsManager::~ISettingsManager() = default;

} // namespace Velmor::App
