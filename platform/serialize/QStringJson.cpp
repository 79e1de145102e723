#include "platform/serialize/QStringJson.h"

#include <QByteArray>
#include <string>

void to_json(nlohmann::json& value, const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    value = std::string(utf8.constData(), static_cast<std::size_t>(utf8.size()));
}

void from_json(const nlohmann::json& value, QString& text) {
    // The conversion to std::string raises type_error 302 for anything but a string.
    const auto utf8 = value.get<std::string>();
    text = QString::fromUtf8(utf8.data(), static_cast<int>(utf8.size()));
}
