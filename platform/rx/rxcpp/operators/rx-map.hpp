#pragma once

#include "../rx-lite.hpp"

namespace rxcpp {
namespace detail {

template <class T, class S>
observable<map_result_t<T, S>> map(const observable<T>& source, S selector) {
    using U = map_result_t<T, S>;
    return make_observable<U>([source, selector](const subscriber<U>& o) {
        source.subscribe(
            make_forwarder<T>(o, [selector](const subscriber<U>& dest, const auto& v) mutable {
                // dest.on_next catches what its own observer throws, so only the selector's
                // throws land here.
                try {
                    dest.on_next(selector(v));
                } catch (...) {
                    dest.on_error(std::current_exception());
                }
            }));
    });
}

} // namespace detail
} // namespace rxcpp
