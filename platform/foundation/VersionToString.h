#pragma once

#include "platform/foundation/Version.h"

#include <QString>

namespace Velmor::Util {

// How many parts of a version VersionToString writes.
enum class VersionToStringDetail {
    MajorMinorPatch = 0, // "1.4.2", what an application shows as its version
    MajorMinor = 1,      // "1.4"
    Major = 2,           // "1"
    Full = 3,            // "1.4.2.118", with the build number
};

// The version's parts as decimal numbers joined by the separator. Throws std::invalid_argument
// for a detail that is none of the enumerators.
QString VersionToString(const Velmor::Core::Version& version, VersionToStringDetail detail,
                        const QString& separator);

} // namespace Velmor::Util
