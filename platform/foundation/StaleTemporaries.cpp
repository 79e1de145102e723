#include "platform/foundation/StaleTemporaries.h"

#include "platform/foundation/TemporaryName.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <glog/logging.h>
#include <map>
#include <mutex>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Velmor {
namespace {

// Per folder listed, what was stale in it, by output.
using Found = std::map<std::string, std::vector<TemporaryName>>;

std::mutex& lock() {
    static std::mutex mutex;
    return mutex;
}

std::map<std::string, Found>& listed() {
    static auto* folders = new std::map<std::string, Found>;
    return *folders;
}

bool runs(long pid) {
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

bool isStale(const TemporaryName& name) {
    return name.host == TemporaryName::thisHost() && !runs(name.pid);
}

// The path and the inode: a folder removed and made again under the same name is listed again.
std::string folderKey(int folder, const std::string& prefix) {
    struct stat status {};
    if (::fstat(folder, &status) != 0)
        return prefix;
    return prefix + '\n' + std::to_string(status.st_dev) + ':' + std::to_string(status.st_ino);
}

Found list(int folder) {
    Found found;
    const int reader = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (reader < 0)
        return found;
    DIR* entries = ::fdopendir(reader);
    if (!entries) {
        ::close(reader);
        return found;
    }
    while (const dirent* entry = ::readdir(entries)) {
        const auto name = TemporaryName::parse(entry->d_name);
        if (name && isStale(*name))
            found[name->output].push_back(*name);
    }
    ::closedir(entries);
    return found;
}

std::vector<TemporaryName> takeFound(int folder, const std::string& prefix,
                                     const std::string& output) {
    std::lock_guard<std::mutex> guard(lock());
    const std::string key = folderKey(folder, prefix);
    auto known = listed().find(key);
    if (known == listed().end())
        known = listed().emplace(key, list(folder)).first;
    auto mine = known->second.find(output);
    if (mine == known->second.end())
        return {};
    std::vector<TemporaryName> taken = std::move(mine->second);
    known->second.erase(mine);
    return taken;
}

// Checked again, by the file itself: a pid may have been taken by a new process since.
bool isOursToRemove(int folder, const TemporaryName& name) {
    struct stat status {};
    if (::fstatat(folder, name.text().c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    return S_ISREG(status.st_mode) && status.st_uid == ::geteuid() && isStale(name);
}

} // namespace

std::vector<std::string> StaleTemporaries::removeFor(int folder, const std::string& prefix,
                                                     const std::string& output) {
    std::vector<std::string> removed;
    for (const TemporaryName& name : takeFound(folder, prefix, output)) {
        if (!isOursToRemove(folder, name) || ::unlinkat(folder, name.text().c_str(), 0) != 0)
            continue;
        const std::string path = prefix + name.text();
        LOG(WARNING) << "Removed the stale temporary " << path << ": process " << name.pid
                     << " of this host no longer runs";
        removed.push_back(path);
    }
    return removed;
}

} // namespace Velmor
