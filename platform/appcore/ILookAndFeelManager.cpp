#include "platform/appcore/ILookAndFeelManager.h"

namespace Velmor::App {

ILookAndFeelManager::~ILookAndFeelManager() = default;

} // namespace Velmor::App
