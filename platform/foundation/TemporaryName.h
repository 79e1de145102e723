#pragma once

#include <optional>
#include <string>

namespace Velmor {

// The name of the file an output is written to before it is complete:
// "<output's name>.reelsmith-partial-<host>-<pid>-<letters>", beside the output. Whoever finds one
// can tell which output it was for and which process of which host wrote it; the six letters and
// digits make it unpredictable, so that nobody can plant a link where it will be.
struct TemporaryName {
    // The output's file name, without its folder.
    std::string output;
    std::string host;
    long pid = 0;
    std::string letters;

    // How many letters a name carries.
    static constexpr std::size_t letterCount = 6;

    std::string text() const;

    // The parts of a file name, when it is a temporary's.
    static std::optional<TemporaryName> parse(const std::string& name);
    // This machine's name as temporaries carry it: the system's host name, anything but letters,
    // digits, '.', '_' and '-' written as '_'.
    static const std::string& thisHost();
};

} // namespace Velmor
