#include "host/ProgressLine.h"

#include <cmath>
#include <map>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string timeLeft(double progress, double frames, double fps) {
    if (progress <= 0 || progress > 1 || frames <= 0 || fps <= 0)
        return "--";
    const double elapsed = frames / fps;
    const double seconds = elapsed / progress - elapsed;
    return std::to_string(std::lround(seconds)) + " s";
}

bool isTerminal(std::FILE* stream) {
    return stream && ::isatty(::fileno(stream));
}

} // namespace

class ProgressLine::Private {
public:
    explicit Private(std::FILE* terminal)
        : terminal(isTerminal(terminal) ? terminal : nullptr) {}

    // Puts `text` on the line in place of what stood there; an empty text wipes it.
    void draw(const std::string& text) {
        drawn = text;
        std::fputs(("\r" + text + "\033[K").c_str(), terminal);
        std::fflush(terminal);
    }

    std::string composed() const {
        std::string line;
        for (const auto& entry : exports)
            line += (line.empty() ? "" : " | ") + entry.second;
        return line;
    }

    std::mutex mutex;
    std::FILE* const terminal;
    // Each running export's part of the line, by output.
    std::map<std::string, std::string> exports;
    // What the line shows now; empty when it is wiped.
    std::string drawn;
    bool closed = false;
};

ProgressLine::ProgressLine(std::FILE* terminal)
    : d(std::make_unique<Private>(terminal)) {}

ProgressLine::~ProgressLine() = default;

std::string ProgressLine::describe(const nlohmann::json& progress) {
    const double share = progress.value("progress", 0.0);
    const double frames = progress.value("frames", 0.0);
    const double fps = progress.value("fps", 0.0);
    return progress.value("output", std::string()) + " " + std::to_string(std::lround(share * 100))
           + "% " + std::to_string(std::lround(fps)) + " fps " + timeLeft(share, frames, fps)
           + " left";
}

void ProgressLine::show(const nlohmann::json& value) {
    if (!d->terminal || !value.is_object())
        return;
    const auto found = value.find("export");
    if (found == value.end() || !found->is_object() || !found->contains("output"))
        return;
    const auto& state = *found;
    const std::string output = state.value("output", std::string());
    std::lock_guard<std::mutex> lock(d->mutex);
    if (d->closed)
        return;
    if (state.contains("progress"))
        d->exports[output] = describe(state);
    else
        d->exports.erase(output);
    d->draw(d->composed());
}

void ProgressLine::printAbove(const std::function<void()>& print) {
    if (!d->terminal) {
        print();
        return;
    }
    std::lock_guard<std::mutex> lock(d->mutex);
    const std::string shown = d->drawn;
    if (!shown.empty())
        d->draw(std::string());
    print();
    if (!shown.empty())
        d->draw(shown);
}

bool ProgressLine::sharesTerminal(std::FILE* stream) const {
    if (!d->terminal || !isTerminal(stream))
        return false;
    struct stat line {};
    struct stat other {};
    if (::fstat(::fileno(d->terminal), &line) != 0 || ::fstat(::fileno(stream), &other) != 0)
        return false;
    return line.st_rdev == other.st_rdev;
}

void ProgressLine::close() {
    if (!d->terminal)
        return;
    std::lock_guard<std::mutex> lock(d->mutex);
    d->closed = true;
    d->exports.clear();
    if (!d->drawn.empty())
        d->draw(std::string());
}
