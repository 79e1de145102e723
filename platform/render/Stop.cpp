#include "platform/render/Stop.h"

namespace Velmor::Render {

Stop::Callback::Callback(const Stop& stop, std::function<void()> call)
    : stop(stop) {
    std::lock_guard<std::mutex> lock(stop.mutex);
    entry = stop.callbacks.insert(stop.callbacks.end(), std::move(call));
    if (stop.flag)
        (*entry)();
}

Stop::Callback::~Callback() {
    std::lock_guard<std::mutex> lock(stop.mutex);
    stop.callbacks.erase(entry);
}

void Stop::request() {
    std::lock_guard<std::mutex> lock(mutex);
    if (flag.exchange(true))
        return;
    for (const auto& call : callbacks)
        call();
}

} // namespace Velmor::Render
