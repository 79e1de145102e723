#include "platform/editorutil/Launcher.h"

#include "platform/foundation/CallLog.h"

#include <QCoreApplication>
#include <atomic>
#include <stdexcept>

using Velmor::Testing::CallLog;

namespace {

std::atomic<Launcher*>& registered() {
    static std::atomic<Launcher*> launcher{nullptr};
    return launcher;
}

} // namespace

Launcher::Launcher() {
    CallLog::record("Launcher::Launcher");
}

Launcher::~Launcher() {
    CallLog::record("Launcher::~Launcher");
}

// A launcher without a user interface or engine of its own: the start-up phases only leave
// their trace, and the core is never initialised by the base.
void Launcher::initializeOpengl() {
    CallLog::record("Launcher::initializeOpengl");
}

void Launcher::initializeStartActions() {
    CallLog::record("Launcher::initializeStartActions");
}

void Launcher::initializeActions() {
    CallLog::record("Launcher::initializeActions");
}

void Launcher::startCoreInitialization() {
    CallLog::record("Launcher::startCoreInitialization");
}

void Launcher::waitForCoreInitialization() {
    CallLog::record("Launcher::waitForCoreInitialization");
}

bool Launcher::isCoreInitialized() const {
    return false;
}

Velmor::App::ActionParser* Launcher::actionParser() const {
    return nullptr;
}

QStringList Launcher::commandLineArguments() const {
    return QCoreApplication::arguments();
}

void Launcher::workerIsBusy(void*) {}

void Launcher::workerIsIdle(void*) {}

Launcher* Launcher::instance() {
    return registered().load();
}

void Launcher::registerInstance(Launcher* launcher) {
    CallLog::record("Launcher::registerInstance");
    if (!launcher)
        throw std::invalid_argument("Cannot register a null launcher");
    Launcher* expected = nullptr;
    if (!registered().compare_exchange_strong(expected, launcher))
        throw std::logic_error("A launcher is already registered");
}

void Launcher::unregisterInstance(Launcher* launcher) {
    CallLog::record("Launcher::unregisterInstance");
    Launcher* expected = launcher;
    registered().compare_exchange_strong(expected, nullptr);
}
