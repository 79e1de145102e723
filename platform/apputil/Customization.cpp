#include "platform/apputil/Customization.h"

#include "platform/appcore/ILookAndFeelManager.h"
#include "platform/foundation/CallLog.h"

#include <mutex>
#include <stdexcept>

using Velmor::Testing::CallLog;

namespace {

struct State {
    std::mutex mutex;
    std::weak_ptr<Velmor::App::ILookAndFeelManager> lookAndFeelManager;
};

State& state() {
    static State instance;
    return instance;
}

} // namespace

void Customization::init(
    const std::weak_ptr<Velmor::App::ILookAndFeelManager>& lookAndFeelManager) {
    CallLog::record("Customization::init");
    std::lock_guard<std::mutex> lock(state().mutex);
    state().lookAndFeelManager = lookAndFeelManager;
}

QString Customization::currentLocale() {
    CallLog::record("Customization::currentLocale");
    const auto manager = lookAndFeelManager().lock();
    if (!manager)
        throw std::logic_error("Customization has no look and feel manager");
    return QString::fromStdString(manager->GetCurrentLocale());
}

std::weak_ptr<Velmor::App::ILookAndFeelManager> Customization::lookAndFeelManager() {
    std::lock_guard<std::mutex> lock(state().mutex);
    return state().lookAndFeelManager;
}
