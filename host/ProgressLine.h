#pragma once

#include <cstdio>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

// The live line on a terminal that shows how far each running export is: it reads the values
// a service emits, and redraws one line on `terminal` from the export progress values among
// them; the end of an export takes it off the line. Without a terminal it does nothing.
//
// Whatever else reaches that terminal goes through printAbove, so that it never lands on the
// end of the line: the line is wiped first and drawn again below it.
class ProgressLine {
public:
    // `terminal` is written only when it is a terminal (isatty).
    explicit ProgressLine(std::FILE* terminal);
    ~ProgressLine();

    // From any thread.
    void show(const nlohmann::json& value);
    // Runs `print`, which writes whole lines to the terminal, with the line wiped before and
    // drawn again after. From any thread; `print` runs under the line's lock.
    void printAbove(const std::function<void()>& print);
    // True when what is written to `stream` shows on the line's terminal, so that it has to go
    // through printAbove: the terminal itself, or a stream open on the same device.
    bool sharesTerminal(std::FILE* stream) const;
    // Wipes the line and draws it no more, so that what is printed next stands alone, also
    // when other threads still deliver progress while the process ends.
    void close();

    // One export's part of the line: "<output> 42% 120 fps 3 s left", the time left
    // reckoned from the frames so far and their rate; "--" while it can't be.
    static std::string describe(const nlohmann::json& progress);

private:
    class Private;
    std::unique_ptr<Private> d;
};
