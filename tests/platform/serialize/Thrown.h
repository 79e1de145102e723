#pragma once

#include <exception>
#include <ostream>
#include <string>
#include <typeinfo>

namespace EditorService::Testing {

// What a call threw: the exception's exact dynamic type and its what(). Tests compare both at
// once: EXPECT_EQ(thrownBy([&] { ... }), thrown<std::runtime_error>("text")).
struct Thrown {
    std::string type;
    std::string what;

    bool operator==(const Thrown& other) const { return type == other.type && what == other.what; }
};

template <class E> Thrown thrown(std::string what) {
    return {typeid(E).name(), std::move(what)};
}

template <class F> Thrown thrownBy(F&& call) {
    try {
        call();
    } catch (const std::exception& exception) {
        return {typeid(exception).name(), exception.what()};
    } catch (...) {
        return {"(not a std::exception)", {}};
    }
    return {"(nothing thrown)", {}};
}

inline void PrintTo(const Thrown& thrown, std::ostream* out) {
    *out << thrown.type << ": \"" << thrown.what << "\"";
}

} // namespace EditorService::Testing
