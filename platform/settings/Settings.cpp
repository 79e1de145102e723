#include "platform/settings/Settings.h"

#include "platform/foundation/CallLog.h"

#include <mutex>
#include <stdexcept>

namespace {

struct State {
    std::mutex mutex;
    SettingsContext context;
};

State& state() {
    static State instance;
    return instance;
}

} // namespace

void Settings::init(const SettingsContext& context) {
    Velmor::Testing::CallLog::record("Settings::init");
    std::lock_guard<std::mutex> lock(state().mutex);
    state().context = context;
}

SettingsContext Settings::context() {
    std::lock_guard<std::mutex> lock(state().mutex);
    return state().context;
}

std::shared_ptr<Velmor::App::ISettingsManager> Settings::applicationSettings() {
    auto settings = context().applicationSettings.lock();
    if (!settings)
        throw std::logic_error("No application settings are available");
    return settings;
}

std::shared_ptr<Velmor::App::ISettingsManager> Settings::productSettings() {
    auto settings = context().productSettings.lock();
    if (!settings)
        throw std::logic_error("No product settings are available");
    return settings;
}
