#include "platform/foundation/VersionToString.h"

#include "platform/foundation/CallLog.h"

#include <QStringList>
#include <stdexcept>

namespace Velmor::Util {

QString VersionToString(const Velmor::Core::Version& version, VersionToStringDetail detail,
                        const QString& separator) {
    Velmor::Testing::CallLog::record("Util::VersionToString");
    const QStringList all{QString::number(version.Major), QString::number(version.Minor),
                          QString::number(version.Patch), QString::number(version.Build)};
    switch (detail) {
    case VersionToStringDetail::MajorMinorPatch:
        return all.mid(0, 3).join(separator);
    case VersionToStringDetail::MajorMinor:
        return all.mid(0, 2).join(separator);
    case VersionToStringDetail::Major:
        return all.front();
    case VersionToStringDetail::Full:
        return all.join(separator);
    }
    throw std::invalid_argument(
        QStringLiteral("Unknown version detail: %1").arg(static_cast<int>(detail)).toStdString());
}

} // namespace Velmor::Util
