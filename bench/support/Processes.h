#pragma once

#include <chrono>
#include <string>
#include <vector>

// Whole processes, timed from spawn to exit.
namespace Bench {

using Seconds = std::chrono::duration<double>;

struct Program {
    std::vector<std::string> arguments;
    std::string input = "/dev/null";
};

struct Measured {
    Seconds time;
    // The peak resident size of the process alone, in KiB (wait4's ru_maxrss).
    long peakKib = 0;
    // The processor time of the process and its threads, user and system (wait4's rusage).
    Seconds cpu{0};
};

// Runs the program with stdout and stderr thrown away; throws unless it exits with 0.
Seconds timeRun(const Program& program);
Measured measureRun(const Program& program);
double median(std::vector<double> values);
// Whether a program of that name is on the PATH.
bool isInstalled(const std::string& program);

} // namespace Bench
