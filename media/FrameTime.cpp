#include "media/FrameTime.h"

#include "service/api/Error.h"

#include <QRegularExpression>
#include <limits>

namespace EditorService {

FrameTime FrameTime::parse(const QString& text) {
    static const QRegularExpression whole(QStringLiteral("^-?[0-9]+$"));
    bool fits = false;
    const long long milliseconds = text.toLongLong(&fits, 10);
    if (!whole.match(text).hasMatch() || !fits) {
        const QString shown = text.isEmpty() ? QStringLiteral("\"\"") : text;
        throw Error(QStringLiteral("--at must be a whole number of milliseconds, is %1")
                        .arg(shown)
                        .toStdString());
    }
    return FrameTime(milliseconds);
}

} // namespace EditorService

namespace EditorService::CLI {

template <> FrameTime parseValue<FrameTime>(QString&& text) {
    return FrameTime::parse(text);
}

template <> QString dumpValue<FrameTime>(const FrameTime& value) {
    return QString::number(value.milliseconds);
}

} // namespace EditorService::CLI

namespace Serialize::Json::detail {

template <>
void load<EditorService::FrameTime>(const nlohmann::json& value, EditorService::FrameTime& target) {
    if (value.is_string()) {
        target = EditorService::FrameTime::parse(QString::fromStdString(value.get<std::string>()));
        return;
    }
    if (value.is_number_integer() && !value.is_number_unsigned()) {
        target = EditorService::FrameTime(value.get<std::int64_t>());
        return;
    }
    const bool fits = value.is_number_unsigned()
                      && value.get<std::uint64_t>()
                             <= static_cast<std::uint64_t>(std::numeric_limits<long long>::max());
    if (fits) {
        target = EditorService::FrameTime(static_cast<long long>(value.get<std::uint64_t>()));
        return;
    }
    if (!value.is_number())
        throw nlohmann::json::type_error::create(
            302, std::string("type must be number, but is ") + value.type_name(), &value);
    target = EditorService::FrameTime::parse(QString::fromStdString(value.dump()));
}

template <>
void save<EditorService::FrameTime>(nlohmann::json& value, const EditorService::FrameTime& source) {
    value = source.milliseconds;
}

} // namespace Serialize::Json::detail
