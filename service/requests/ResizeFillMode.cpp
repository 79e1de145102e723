#include "service/requests/ResizeFillMode.h"

#include "platform/proc/IResize.h"
#include "platform/serialize/QStringJson.h"
#include "service/api/Error.h"

using Velmor::Proc::IResize;
using Velmor::Proc::SettingsResizer;

const QStringList& resizeFillModeList() {
    static const QStringList names = [] {
        QStringList list;
        for (int number = 0; number <= 5; ++number) {
            const auto mode = static_cast<SettingsResizer::CustomModes>(number);
            list.append(QString::fromStdString(IResize::CustomModes2String(mode)));
        }
        return list;
    }();
    return names;
}

void operator>>(const SettingsResizer::CustomModes& mode, QString& text) {
    text = QString::fromStdString(IResize::CustomModes2String(mode));
}

void operator<<(SettingsResizer::CustomModes& mode, const QString& text) {
    if (!text.isEmpty() && resizeFillModeList().contains(text, Qt::CaseSensitive)) {
        mode = IResize::String2CustomModes(text.toStdString());
        return;
    }
    // One call fills both places, so that a %N in the text is not filled in turn.
    throw EditorService::Error(
        QStringLiteral("Can not parse preset resize mode \"%1\", expects one of %2")
            .arg(text, resizeFillModeList().join(QLatin1Char(',')))
            .toStdString());
}

namespace EditorService::CLI {

template <> SettingsResizer::CustomModes parseValue<SettingsResizer::CustomModes>(QString&& text) {
    SettingsResizer::CustomModes mode = SettingsResizer::Fit;
    ::operator<<(mode, text);
    return mode;
}

template <>
QString dumpValue<SettingsResizer::CustomModes>(const SettingsResizer::CustomModes& value) {
    QString text;
    ::operator>>(value, text);
    return text;
}

} // namespace EditorService::CLI

namespace Serialize::Json::detail {

template <>
void load<SettingsResizer::CustomModes>(const nlohmann::json& value,
                                        SettingsResizer::CustomModes& target) {
    ::operator<<(target, value.get<QString>());
}

template <>
void save<SettingsResizer::CustomModes>(nlohmann::json& value,
                                        const SettingsResizer::CustomModes& source) {
    QString text;
    ::operator>>(source, text);
    value = text;
}

} // namespace Serialize::Json::detail
