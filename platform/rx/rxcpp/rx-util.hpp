#pragma once

#include <tuple>
#include <type_traits>

namespace rxcpp {
namespace util {

// A function object that returns a copy of its Index-th argument.
template <int Index> struct take_at {
    template <class... ParamN>
    auto operator()(const ParamN&... pn) const
        -> std::decay_t<std::tuple_element_t<Index, std::tuple<ParamN...>>> {
        return std::get<Index>(std::tie(pn...));
    }
};

} // namespace util
} // namespace rxcpp
