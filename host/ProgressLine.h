#pragma once

#include <cstdio>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

// The live line on a terminal that shows how far each running export is: it reads the values
// a service emits, and redraws one line on `terminal` from the export progress values among
// them; the end of an export takes it off the line. Without a terminal it does nothing.
class ProgressLine {
public:
    // `terminal` is written only when it is a terminal (isatty).
    explicit ProgressLine(std::FILE* terminal);

    // From any thread.
    void show(const nlohmann::json& value);
    // Wipes the line, so that what is printed next stands alone.
    void clear();

    // One export's part of the line: "<output> 42% 120 fps 3 s left", the time left
    // reckoned from the frames so far and their rate; "--" while it can't be.
    static std::string describe(const nlohmann::json& progress);

private:
    std::mutex mutex;
    std::FILE* terminal = nullptr;
    bool drawn = false;
    std::map<std::string, std::string> exports;
};
