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

// The field visitor's way to hand a field over:
//     archive & makeOptionField(timeout, timeoutOption());
// The result is const so that it binds to the archives' operator&, as Boost's make_nvp does.
// clang-format reads such a line as a declaration and glues the '&' to `archive`; keep the field
// lines between `// clang-format off` and `// clang-format on`.
template <class T> const OptionField<T> makeOptionField(T& value, QCommandLineOption option) {
    return OptionField<T>{&value, std::move(option)};
}

} // namespace EditorService
