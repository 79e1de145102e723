#pragma once

#include "../rx-lite.hpp"

namespace rxcpp {
namespace detail {

template <class T, class P> observable<T> filter(const observable<T>& source, P predicate) {
    return make_observable<T>([source, predicate](const subscriber<T>& o) {
        source.subscribe(
            make_forwarder<T>(o, [predicate](const subscriber<T>& dest, auto&& v) mutable {
                bool pass = false;
                try {
                    pass = predicate(std::as_const(v));
                } catch (...) {
                    dest.on_error(std::current_exception());
                    return;
                }
                if (pass)
                    dest.on_next(std::forward<decltype(v)>(v));
            }));
    });
}

} // namespace detail
} // namespace rxcpp
