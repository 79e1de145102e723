#include "platform/foundation/TemporaryName.h"

#include <algorithm>
#include <cctype>
#include <unistd.h>

namespace Velmor {
namespace {

const std::string marker = ".reelsmith-partial-";

bool isLetterOrDigit(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0;
}

bool allDigits(const std::string& text) {
    return !text.empty() && text.size() <= 9 && std::all_of(text.begin(), text.end(), [](char c) {
        return std::isdigit(static_cast<unsigned char>(c));
    });
}

std::string systemHostName() {
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0 || name[0] == '\0')
        return "localhost";
    std::string host(name);
    for (char& c : host) {
        if (!isLetterOrDigit(c) && c != '.' && c != '_' && c != '-')
            c = '_';
    }
    return host;
}

} // namespace

std::string TemporaryName::text() const {
    return output + marker + host + "-" + std::to_string(pid) + "-" + letters;
}

// Read from the end: a host name may hold '-', the pid and the letters never do.
std::optional<TemporaryName> TemporaryName::parse(const std::string& name) {
    const std::size_t at = name.rfind(marker);
    if (at == std::string::npos || at == 0)
        return std::nullopt;
    const std::string rest = name.substr(at + marker.size());
    const std::size_t lettersDash = rest.rfind('-');
    if (lettersDash == std::string::npos || lettersDash == 0)
        return std::nullopt;
    const std::size_t pidDash = rest.rfind('-', lettersDash - 1);
    if (pidDash == std::string::npos || pidDash == 0)
        return std::nullopt;
    TemporaryName parsed;
    parsed.output = name.substr(0, at);
    parsed.host = rest.substr(0, pidDash);
    parsed.letters = rest.substr(lettersDash + 1);
    const std::string pid = rest.substr(pidDash + 1, lettersDash - pidDash - 1);
    if (!allDigits(pid) || parsed.letters.size() != letterCount
        || !std::all_of(parsed.letters.begin(), parsed.letters.end(), isLetterOrDigit))
        return std::nullopt;
    parsed.pid = std::stol(pid);
    return parsed;
}

const std::string& TemporaryName::thisHost() {
    static const std::string host = systemHostName();
    return host;
}

} // namespace Velmor
