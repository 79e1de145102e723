#include "host/ProgressLine.h"

#include <cmath>
#include <unistd.h>

namespace {

std::string timeLeft(double progress, double frames, double fps) {
    if (progress <= 0 || progress > 1 || frames <= 0 || fps <= 0)
        return "--";
    const double elapsed = frames / fps;
    const double seconds = elapsed / progress - elapsed;
    return std::to_string(std::lround(seconds)) + " s";
}

} // namespace

ProgressLine::ProgressLine(std::FILE* terminal)
    : terminal(terminal && ::isatty(::fileno(terminal)) ? terminal : nullptr) {}

std::string ProgressLine::describe(const nlohmann::json& progress) {
    const double share = progress.value("progress", 0.0);
    const double frames = progress.value("frames", 0.0);
    const double fps = progress.value("fps", 0.0);
    return progress.value("output", std::string()) + " " + std::to_string(std::lround(share * 100))
           + "% " + std::to_string(std::lround(fps)) + " fps " + timeLeft(share, frames, fps)
           + " left";
}

void ProgressLine::show(const nlohmann::json& value) {
    if (!terminal || !value.is_object())
        return;
    const auto found = value.find("export");
    if (found == value.end() || !found->is_object() || !found->contains("output"))
        return;
    const auto& state = *found;
    const std::string output = state.value("output", std::string());
    std::lock_guard<std::mutex> lock(mutex);
    if (state.contains("progress"))
        exports[output] = describe(state);
    else
        exports.erase(output);
    std::string line = "\r";
    for (const auto& entry : exports)
        line += (line.size() > 1 ? " | " : "") + entry.second;
    line += "\033[K";
    drawn = true;
    std::fputs(line.c_str(), terminal);
    std::fflush(terminal);
}

void ProgressLine::clear() {
    std::lock_guard<std::mutex> lock(mutex);
    if (!drawn)
        return;
    drawn = false;
    exports.clear();
    std::fputs("\r\033[K", terminal);
    std::fflush(terminal);
}
