#pragma once

#include <QString>

namespace Velmor::Core {

// A product version: major, minor, patch and build numbers, none negative.
struct Version {
    int Major = 0;
    int Minor = 0;
    int Patch = 0;
    int Build = 0;

    // Reads "major.minor", "major.minor.patch" or "major.minor.patch.build"; missing parts are
    // 0. Throws std::invalid_argument, quoting the text, when it has any other form.
    static Version FromString(const QString& text);

    bool operator==(const Version& other) const;
    bool operator!=(const Version& other) const { return !(*this == other); }
};

} // namespace Velmor::Core
