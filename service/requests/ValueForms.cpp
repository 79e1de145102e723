#include "service/requests/ValueForms.h"

#include "platform/serialize/QStringJson.h"
#include "service/api/Error.h"

#include <QRegularExpression>

namespace EditorService::CLI::extension {
namespace {

QRegularExpressionMatch matchNumberPair(const QString& text) {
    const QRegularExpression pattern(QStringLiteral("^(\\d+):(\\d+)$"));
    return pattern.match(text);
}

} // namespace

QString dumpRange(const Types::Range& range) {
    if (range == Types::Range())
        return QString();
    return QStringLiteral("%1:%2")
        .arg(static_cast<qlonglong>(range.start()))
        .arg(static_cast<qlonglong>(range.end()));
}

Types::Range parseRange(const QString& text) {
    if (text.isEmpty())
        return Types::Range();
    const QRegularExpressionMatch match = matchNumberPair(text);
    if (!match.hasMatch()) {
        throw Error(QStringLiteral("Can not parse range \"%1\", expects \"ms:ms\"")
                        .arg(text)
                        .toStdString());
    }
    // A bound beyond 64 bits reads as 0: the form is lenient, not validating.
    const MTime start = match.captured(1).toLongLong(nullptr, 10);
    const MTime end = match.captured(2).toLongLong(nullptr, 10);
    return Types::Range(start, end);
}

QString dumpFrameSize(const PresetFrameSize& size) {
    if (size.isOriginal())
        return QString();
    return QStringLiteral("%1:%2").arg(size.width).arg(size.height);
}

PresetFrameSize parseFrameSize(const QString& text) {
    if (text.isEmpty() || text == PresetFrameSize::originalSizeString())
        return PresetFrameSize();
    const QRegularExpressionMatch match = matchNumberPair(text);
    if (!match.hasMatch()) {
        throw Error(QStringLiteral("Can not parse frame size \"%1\", expects \"width:height\"")
                        .arg(text)
                        .toStdString());
    }
    // A side beyond 32 bits reads as 0; evenness is for the user of the size to judge.
    PresetFrameSize size;
    size.width = match.captured(1).toInt(nullptr, 10);
    size.height = match.captured(2).toInt(nullptr, 10);
    return size;
}

} // namespace EditorService::CLI::extension

namespace EditorService::CLI {

template <> Types::Range parseValue<Types::Range>(QString&& text) {
    return extension::parseRange(text);
}

template <> QString dumpValue<Types::Range>(const Types::Range& value) {
    return extension::dumpRange(value);
}

template <> PresetFrameSize parseValue<PresetFrameSize>(QString&& text) {
    return extension::parseFrameSize(text);
}

template <> QString dumpValue<PresetFrameSize>(const PresetFrameSize& value) {
    return extension::dumpFrameSize(value);
}

} // namespace EditorService::CLI

namespace Serialize::Json::detail {

template <> void load<Types::Range>(const nlohmann::json& value, Types::Range& target) {
    target = EditorService::CLI::extension::parseRange(value.get<QString>());
}

template <> void save<Types::Range>(nlohmann::json& value, const Types::Range& source) {
    value = EditorService::CLI::extension::dumpRange(source);
}

template <> void load<PresetFrameSize>(const nlohmann::json& value, PresetFrameSize& target) {
    target = EditorService::CLI::extension::parseFrameSize(value.get<QString>());
}

template <> void save<PresetFrameSize>(nlohmann::json& value, const PresetFrameSize& source) {
    value = EditorService::CLI::extension::dumpFrameSize(source);
}

} // namespace Serialize::Json::detail
