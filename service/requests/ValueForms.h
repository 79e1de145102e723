#pragma once

#include "platform/model/Range.h"
#include "platform/serialize/JsonDetail.h"
#include "service/api/EditorServiceExport.h"
#include "service/requests/PresetFrameSize.h"
#include "service/requests/ValueText.h"

#include <QString>
#include <nlohmann/json.hpp>

// Text forms of a time range ("ms:ms") and an export frame size ("width:height") on a command
// line. The parsers throw EditorService::Error for a text they cannot read; an empty text reads
// as the default range and the original size, which are also written as the empty text.
namespace EditorService::CLI::extension {

EDITORSERVICE_EXPORT QString dumpRange(const Types::Range& range);
EDITORSERVICE_EXPORT Types::Range parseRange(const QString& text);
EDITORSERVICE_EXPORT QString dumpFrameSize(const PresetFrameSize& size);
EDITORSERVICE_EXPORT PresetFrameSize parseFrameSize(const QString& text);

} // namespace EditorService::CLI::extension

// Option fields of both types read and write these forms; their failures are the forms' own.
namespace EditorService::CLI {

template <> struct TypeName<Types::Range> {
    static QString name() { return QStringLiteral("Types::Range"); }
};

template <> struct TypeName<PresetFrameSize> {
    static QString name() { return QStringLiteral("PresetFrameSize"); }
};

template <> EDITORSERVICE_EXPORT Types::Range parseValue<Types::Range>(QString&& text);
template <> EDITORSERVICE_EXPORT QString dumpValue<Types::Range>(const Types::Range& value);
template <> EDITORSERVICE_EXPORT PresetFrameSize parseValue<PresetFrameSize>(QString&& text);
template <> EDITORSERVICE_EXPORT QString dumpValue<PresetFrameSize>(const PresetFrameSize& value);

} // namespace EditorService::CLI

// In JSON both are strings of the same forms. A value of another kind raises nlohmann::json's
// type_error 302; a string that does not read raises EditorService::Error.
namespace Serialize::Json::detail {

template <>
EDITORSERVICE_EXPORT void load<Types::Range>(const nlohmann::json& value, Types::Range& target);
template <>
EDITORSERVICE_EXPORT void save<Types::Range>(nlohmann::json& value, const Types::Range& source);
template <>
EDITORSERVICE_EXPORT void load<PresetFrameSize>(const nlohmann::json& value,
                                                PresetFrameSize& target);
template <>
EDITORSERVICE_EXPORT void save<PresetFrameSize>(nlohmann::json& value,
                                                const PresetFrameSize& source);

} // namespace Serialize::Json::detail
