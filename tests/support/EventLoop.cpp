#include "tests/support/EventLoop.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <thread>

namespace EditorService::Testing {

bool spinUntil(const std::function<bool()>& done, std::chrono::milliseconds limit) {
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (!done()) {
        if (std::chrono::steady_clock::now() >= deadline)
            return done();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents();
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

void spinFor(std::chrono::milliseconds duration) {
    const auto deadline = std::chrono::steady_clock::now() + duration;
    while (std::chrono::steady_clock::now() < deadline) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QCoreApplication::sendPostedEvents();
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
}

} // namespace EditorService::Testing
