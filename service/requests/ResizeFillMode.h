#pragma once

#include "platform/proc/SettingsResizer.h"
#include "platform/serialize/JsonDetail.h"
#include "service/api/EditorServiceExport.h"
#include "service/requests/ValueText.h"

#include <QString>
#include <QStringList>
#include <nlohmann/json.hpp>

// Text form of a resize fill mode: its name as Velmor::Proc::IResize gives it.

// The names of the six modes in number order, built on first use and kept for the process.
EDITORSERVICE_EXPORT const QStringList& resizeFillModeList();

// The arrows show the way of the data: `mode >> text` writes the mode's name into text,
// `mode << text` reads a name into mode. Reading throws EditorService::Error for an empty text
// or any text not in resizeFillModeList(), compared with case, and leaves mode as it was.
EDITORSERVICE_EXPORT void operator>>(const Velmor::Proc::SettingsResizer::CustomModes& mode,
                                     QString& text);
EDITORSERVICE_EXPORT void operator<<(Velmor::Proc::SettingsResizer::CustomModes& mode,
                                     const QString& text);

// Option fields read and write the name; its failures are the operators' own.
namespace EditorService::CLI {

template <> struct TypeName<Velmor::Proc::SettingsResizer::CustomModes> {
    static QString name() { return QStringLiteral("CustomModes"); }
};

template <>
EDITORSERVICE_EXPORT Velmor::Proc::SettingsResizer::CustomModes
parseValue<Velmor::Proc::SettingsResizer::CustomModes>(QString&& text);
template <>
EDITORSERVICE_EXPORT QString dumpValue<Velmor::Proc::SettingsResizer::CustomModes>(
    const Velmor::Proc::SettingsResizer::CustomModes& value);

} // namespace EditorService::CLI

// In JSON the mode is its name as a string. A value of another kind raises nlohmann::json's
// type_error 302; a string that is no name raises EditorService::Error.
namespace Serialize::Json::detail {

template <>
EDITORSERVICE_EXPORT void load<Velmor::Proc::SettingsResizer::CustomModes>(
    const nlohmann::json& value, Velmor::Proc::SettingsResizer::CustomModes& target);
template <>
EDITORSERVICE_EXPORT void save<Velmor::Proc::SettingsResizer::CustomModes>(
    nlohmann::json& value, const Velmor::Proc::SettingsResizer::CustomModes& source);

} // namespace Serialize::Json::detail
