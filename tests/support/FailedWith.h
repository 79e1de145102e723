#pragma once

#include <gmock/gmock.h>

#include <cxxabi.h>

#include <cstdlib>
#include <exception>
#include <memory>
#include <ostream>
#include <string>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace EditorService::Testing {

inline std::string readableTypeName(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 && name ? name.get() : type.name();
}

// The text of a failure: what() of a std::exception, "(not a std::exception)" otherwise, and
// "(no failure)" for a null pointer.
inline std::string failureText(const std::exception_ptr& failure) {
    if (!failure)
        return "(no failure)";
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "(not a std::exception)";
    }
}

// What calling `call` throws, or a null pointer when it returns.
template <class Call> std::exception_ptr failureOf(const Call& call) {
    try {
        call();
    } catch (...) {
        return std::current_exception();
    }
    return nullptr;
}

// Matches a failure of exactly the type E (not a subclass of it) with exactly `text` as its
// what(). The failure is a std::exception_ptr, or a callable that is called and must throw it:
//   EXPECT_THAT(recorder.error(), FailedWith<Error>("No script path"));
//   EXPECT_THAT([&] { parse("-x"); }, FailedWith<std::runtime_error>("..."));
template <class E> class FailedWithMatcher {
public:
    explicit FailedWithMatcher(std::string text)
        : text(std::move(text)) {}

    bool MatchAndExplain(const std::exception_ptr& failure,
                         testing::MatchResultListener* listener) const {
        if (!failure) {
            *listener << "which is no failure";
            return false;
        }
        const std::type_info* type = nullptr;
        std::string actual;
        try {
            std::rethrow_exception(failure);
        } catch (const std::exception& error) {
            type = &typeid(error);
            actual = error.what();
        } catch (...) {
            type = abi::__cxa_current_exception_type();
            actual = "(not a std::exception)";
        }
        *listener << "which is " << (type ? readableTypeName(*type) : "an unknown type") << " \""
                  << actual << "\"";
        return type && *type == typeid(E) && actual == text;
    }

    template <class Call, std::enable_if_t<std::is_invocable_v<const Call&>, int> = 0>
    bool MatchAndExplain(const Call& call, testing::MatchResultListener* listener) const {
        return MatchAndExplain(failureOf(call), listener);
    }

    void DescribeTo(std::ostream* out) const {
        *out << "fails with " << readableTypeName(typeid(E)) << " \"" << text << "\"";
    }

    void DescribeNegationTo(std::ostream* out) const {
        *out << "does not fail with " << readableTypeName(typeid(E)) << " \"" << text << "\"";
    }

private:
    std::string text;
};

template <class E> testing::PolymorphicMatcher<FailedWithMatcher<E>> FailedWith(std::string text) {
    return testing::MakePolymorphicMatcher(FailedWithMatcher<E>(std::move(text)));
}

} // namespace EditorService::Testing
