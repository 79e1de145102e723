#pragma once

#include <QCommandLineOption>
#include <utility>

namespace EditorService {

// One field of a request as its field visitor hands it to an archive: the request's value and
// the option that describes it. The option's first name is the long command-line name and the
// JSON key, further names are aliases, its description and value name feed the help, and its
// default text is what a value-taking option given last without a value reads as.
//
// Value types with archive forms: int, long long, bool, QString, and std::optional of each but
// bool. Another type T plugs in with CLI::parseValue<T>, CLI::dumpValue<T> and CLI::TypeName<T>
// (ValueText.h), and Serialize::Json::detail::load<T>/save<T> (platform/serialize/JsonDetail.h).
template <class T> struct OptionField {
    T* value;
    QCommandLineOption option;
};

// An OptionField for a visitor to hand to an archive. The result is const so that it binds to
// the archives' operator&, as Boost's make_nvp does.
template <class T> const OptionField<T> makeOptionField(T& value, QCommandLineOption option) {
    return OptionField<T>{&value, std::move(option)};
}

// The field visitor's way to hand a field over, read or written:
//     visitField(archive, timeout, timeoutOption());
template <class Archive, class T>
void visitField(Archive& archive, T& value, QCommandLineOption option) {
    archive & makeOptionField(value, std::move(option));
}

} // namespace EditorService
