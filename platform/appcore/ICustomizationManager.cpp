#include "platform/appcore/ICustomizationManager.h"

namespace Velmor::App {

ICustomizationManager::~ICustomizationManager() = default;

} // namespace Velmor::App
