#include "platform/engine/Probe.h"

#include <map>
#include <mutex>
#include <stdexcept>

namespace Velmor::Testing {
namespace {

struct Points {
    std::mutex mutex;
    std::multimap<std::string, std::function<void()>> armed;
};

Points& points() {
    static Points instance;
    return instance;
}

} // namespace

void Probe::failNext(const std::string& point) {
    onNext(point, [point] { throw std::runtime_error("Injected failure at " + point); });
}

void Probe::onNext(const std::string& point, std::function<void()> action) {
    std::lock_guard<std::mutex> lock(points().mutex);
    points().armed.emplace(point, std::move(action));
}

void Probe::clear() {
    std::lock_guard<std::mutex> lock(points().mutex);
    points().armed.clear();
}

void Probe::hit(const std::string& point) {
    std::function<void()> action;
    {
        std::lock_guard<std::mutex> lock(points().mutex);
        const auto found = points().armed.find(point);
        if (found == points().armed.end())
            return;
        action = std::move(found->second);
        points().armed.erase(found);
    }
    action();
}

} // namespace Velmor::Testing
