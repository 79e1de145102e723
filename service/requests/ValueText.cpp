#include "service/requests/ValueText.h"

#include <cstdlib>
#include <memory>
#include <stdexcept>

#if __has_include(<cxxabi.h>)
#include <cxxabi.h>
#define EDITORSERVICE_HAS_CXXABI 1
#endif

namespace EditorService::CLI {

void throwParseError(const QString& text, const QString& typeName) {
    // Both at once, so that a placeholder in the text is quoted as it came.
    throw std::runtime_error(
        QStringLiteral("Can not parse \"%1\" as %2").arg(text, typeName).toStdString());
}

QString demangledTypeName(const std::type_info& type) {
#ifdef EDITORSERVICE_HAS_CXXABI
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> demangled(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    if (status == 0 && demangled)
        return QString::fromUtf8(demangled.get());
#endif
    return QString::fromUtf8(type.name());
}

namespace {

template <class T> T parseNumber(QString&& text) {
    if (text.isEmpty())
        return 0;
    T value = 0;
    QTextStream stream(&text, QIODevice::ReadOnly);
    stream >> value;
    if (stream.status() != QTextStream::Ok)
        throwParseError(text, TypeName<T>::name());
    return value;
}

template <class T> QString dumpNumber(T value) {
    QString text;
    QTextStream stream(&text, QIODevice::WriteOnly);
    stream << value;
    stream.flush();
    return text;
}

} // namespace

template <> int parseValue<int>(QString&& text) {
    return parseNumber<int>(std::move(text));
}

template <> long long parseValue<long long>(QString&& text) {
    return parseNumber<long long>(std::move(text));
}

template <> QString parseValue<QString>(QString&& text) {
    return std::move(text);
}

template <> QString dumpValue<int>(const int& value) {
    return dumpNumber(value);
}

template <> QString dumpValue<long long>(const long long& value) {
    return dumpNumber(value);
}

template <> QString dumpValue<QString>(const QString& value) {
    return value;
}

} // namespace EditorService::CLI
