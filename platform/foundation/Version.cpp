#include "platform/foundation/Version.h"

#include <QRegularExpression>
#include <stdexcept>

namespace Velmor::Core {
namespace {

const QRegularExpression& versionPattern() {
    static const QRegularExpression pattern(
        QStringLiteral("^(\\d{1,9})\\.(\\d{1,9})(?:\\.(\\d{1,9}))?(?:\\.(\\d{1,9}))?$"));
    return pattern;
}

} // namespace

Version Version::FromString(const QString& text) {
    const auto match = versionPattern().match(text);
    if (!match.hasMatch())
        throw std::invalid_argument(
            QStringLiteral("Invalid version: \"%1\"").arg(text).toStdString());
    Version version;
    version.Major = match.captured(1).toInt();
    version.Minor = match.captured(2).toInt();
    version.Patch = match.captured(3).toInt();
    version.Build = match.captured(4).toInt();
    return version;
}

bool Version::operator==(const Version& other) const {
    return Major == other.Major && Minor == other.Minor && Patch == other.Patch
           && Build == other.Build;
}

} // namespace Velmor::Core
