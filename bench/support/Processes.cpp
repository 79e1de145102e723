#include "bench/support/Processes.h"

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace Bench {

Seconds timeRun(const Program& program) {
    return measureRun(program).time;
}

Measured measureRun(const Program& program) {
    std::vector<char*> argv;
    for (const auto& argument : program.arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, 0, program.input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, 2, "/dev/null", O_WRONLY, 0);
    const auto begin = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int spawned = posix_spawnp(&child, argv[0], &files, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (spawned != 0)
        throw std::runtime_error("cannot start " + program.arguments.front());
    int status = 0;
    rusage usage{};
    wait4(child, &status, 0, &usage);
    const auto end = std::chrono::steady_clock::now();
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        throw std::runtime_error(program.arguments.front() + " failed");
    const auto seconds = [](const timeval& time) { return time.tv_sec + time.tv_usec / 1e6; };
    return {end - begin, usage.ru_maxrss,
            Seconds(seconds(usage.ru_utime) + seconds(usage.ru_stime))};
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

bool isInstalled(const std::string& program) {
    const char* path = std::getenv("PATH");
    std::string directories = path ? path : "/usr/bin:/bin";
    std::size_t from = 0;
    while (from <= directories.size()) {
        const std::size_t to = std::min(directories.find(':', from), directories.size());
        const std::string candidate = directories.substr(from, to - from) + "/" + program;
        if (access(candidate.c_str(), X_OK) == 0)
            return true;
        from = to + 1;
    }
    return false;
}

} // namespace Bench
