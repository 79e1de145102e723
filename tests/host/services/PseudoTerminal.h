#pragma once

#include <QByteArray>
#include <cstdio>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

namespace EditorService::Testing {

// A pseudo-terminal for code that writes only to terminals: `terminal` is a stream on it, and
// received() gives every byte written to it, as the terminal's line discipline passed them on.
class PseudoTerminal {
public:
    PseudoTerminal() {
        int slave = -1;
        if (::openpty(&master, &slave, nullptr, nullptr, nullptr) != 0) {
            ADD_FAILURE() << "openpty failed";
            return;
        }
        terminal = ::fdopen(slave, "w");
    }
    ~PseudoTerminal() {
        closeTerminal();
        if (master >= 0)
            ::close(master);
    }
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // Closes `terminal`, then reads until the terminal has passed on all it was given.
    QByteArray received() {
        closeTerminal();
        QByteArray bytes;
        char buffer[4096];
        ssize_t read = 0;
        while ((read = ::read(master, buffer, sizeof buffer)) > 0)
            bytes.append(buffer, int(read));
        return bytes;
    }

    std::FILE* terminal = nullptr;

private:
    void closeTerminal() {
        if (terminal)
            std::fclose(terminal);
        terminal = nullptr;
    }

    int master = -1;
};

} // namespace EditorService::Testing
