#pragma once

#include "service/api/EditorServiceExport.h"

#include <QString>
#include <QTextStream>
#include <typeinfo>

namespace EditorService::CLI {

// The name of a value type in the parse failure's message. The primary template demangles
// typeid(T).name() where the run time offers it; a type whose name should read otherwise
// specialises it.
template <class T> struct TypeName { static QString name(); };

template <> struct TypeName<int> {
    static QString name() { return QStringLiteral("int"); }
};

template <> struct TypeName<long long> {
    static QString name() { return QStringLiteral("long long"); }
};

template <> struct TypeName<QString> {
    static QString name() { return QStringLiteral("QString"); }
};

// Throws std::runtime_error "Can not parse \"<text>\" as <typeName>".
[[noreturn]] EDITORSERVICE_EXPORT void throwParseError(const QString& text,
                                                       const QString& typeName);

EDITORSERVICE_EXPORT QString demangledTypeName(const std::type_info& type);

template <class T> QString TypeName<T>::name() {
    return demangledTypeName(typeid(T));
}

// The value of an option's text. An empty text is the value-initialised T; otherwise the text
// is read by QTextStream's >> with its default settings (so text after the number is ignored,
// 0x reads as hexadecimal, a leading 0 as octal) and any stream status but Ok throws the parse
// failure above. Another type plugs in by an explicit specialisation next to the type.
template <class T> T parseValue(QString&& text) {
    if (text.isEmpty())
        return T{};
    T value{};
    QTextStream stream(&text, QIODevice::ReadOnly);
    stream >> value;
    if (stream.status() != QTextStream::Ok)
        throwParseError(text, TypeName<T>::name());
    return value;
}

// The text of an option's value, written through QTextStream's << into a fresh QString.
template <class T> QString dumpValue(const T& value) {
    QString text;
    QTextStream stream(&text, QIODevice::WriteOnly);
    stream << value;
    stream.flush();
    return text;
}

template <> EDITORSERVICE_EXPORT int parseValue<int>(QString&& text);
template <> EDITORSERVICE_EXPORT long long parseValue<long long>(QString&& text);
// The text itself: every text is a QString, so this never fails.
template <> EDITORSERVICE_EXPORT QString parseValue<QString>(QString&& text);

template <> EDITORSERVICE_EXPORT QString dumpValue<int>(const int& value);
template <> EDITORSERVICE_EXPORT QString dumpValue<long long>(const long long& value);
template <> EDITORSERVICE_EXPORT QString dumpValue<QString>(const QString& value);

} // namespace EditorService::CLI
