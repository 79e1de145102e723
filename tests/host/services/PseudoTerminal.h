#pragma once

#include <QByteArray>
#include <cstdio>
#include <gtest/gtest.h>
#include <pty.h>
#include <thread>
#include <unistd.h>

namespace EditorService::Testing {

// A pseudo-terminal for code that writes only to terminals: `terminal` is a stream on it, and
// received() gives every byte written to it, as the terminal's line discipline passed them on.
// A thread reads the terminal all along, so that a writer never waits for room in it.
class PseudoTerminal {
public:
    PseudoTerminal() {
        int slave = -1;
        if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) {
            ADD_FAILURE() << "openpty failed";
            return;
        }
        terminal = ::fdopen(slave, "w");
        // Once the terminal is closed and all it was given is read, read fails.
        reader = std::thread([this] {
            char buffer[4096];
            ssize_t read = 0;
            while ((read = ::read(master, buffer, sizeof buffer)) > 0)
                bytes.append(buffer, int(read));
        });
    }
    ~PseudoTerminal() {
        finish();
        if (master >= 0)
            ::close(master);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // Closes `terminal`, then gives all that it was given.
    QByteArray received() {
        finish();
        return bytes;
    }

    std::FILE* terminal = nullptr;

private:
    void finish() {
        if (terminal)
            std::fclose(terminal);
        terminal = nullptr;
        if (reader.joinable())
            reader.join();
    }

    int master = -1;
    std::thread reader;
    QByteArray bytes;
};

} // namespace EditorService::Testing
