#include "platform/foundation/Temporaries.h"

#include <algorithm>
#include <mutex>
#include <unistd.h>

namespace Velmor::Temporaries {
namespace {

std::mutex& lock() {
    static std::mutex mutex;
    return mutex;
}

std::vector<std::string>& registered() {
    // Never destroyed: a thread may end the process while static destructors run.
    static auto* files = new std::vector<std::string>;
    return *files;
}

} // namespace

void add(const std::string& path) {
    std::lock_guard<std::mutex> guard(lock());
    auto& files = registered();
    if (std::find(files.begin(), files.end(), path) == files.end())
        files.push_back(path);
}

void remove(const std::string& path) {
    std::lock_guard<std::mutex> guard(lock());
    auto& files = registered();
    files.erase(std::remove(files.begin(), files.end(), path), files.end());
}

std::vector<std::string> paths() {
    std::lock_guard<std::mutex> guard(lock());
    return registered();
}

void removeAll() {
    std::lock_guard<std::mutex> guard(lock());
    auto& files = registered();
    for (const auto& path : files)
        ::unlink(path.c_str());
    files.clear();
}

} // namespace Velmor::Temporaries
