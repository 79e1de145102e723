#pragma once

#include "platform/serialize/JsonDetail.h"
#include "service/requests/ValueText.h"

#include <QString>
#include <nlohmann/json.hpp>

namespace EditorService {

// The time of the frame a thumbnail shows, as --at gives it: a whole number of milliseconds, read
// strictly, so that a fraction, a number too large for 64 bits, an empty text or text after the
// number is refused rather than cut short. A sign is read; whether a negative time makes sense is
// the request's to say.
struct FrameTime {
    FrameTime(long long milliseconds = 0)
        : milliseconds(milliseconds) {}
    operator long long() const { return milliseconds; }

    long long milliseconds;

    // Throws Error "--at must be a whole number of milliseconds, is <text>", with "" for an
    // empty text.
    static FrameTime parse(const QString& text);
};

} // namespace EditorService

namespace EditorService::CLI {

template <> struct TypeName<FrameTime> {
    static QString name() { return QStringLiteral("FrameTime"); }
};

template <> FrameTime parseValue<FrameTime>(QString&& text);
template <> QString dumpValue<FrameTime>(const FrameTime& value);

} // namespace EditorService::CLI

// In JSON a whole number, or a string of the command line's form; a fraction or a number out of
// range fails as the text does, with the number as JSON writes it.
namespace Serialize::Json::detail {

template <>
void load<EditorService::FrameTime>(const nlohmann::json& value, EditorService::FrameTime& target);
template <>
void save<EditorService::FrameTime>(nlohmann::json& value, const EditorService::FrameTime& source);

} // namespace Serialize::Json::detail
