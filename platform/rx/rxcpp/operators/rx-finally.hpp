#pragma once

#include "../rx-lite.hpp"

namespace rxcpp {
namespace detail {

// The call joins the subscriber's lifetime, which ends once - after the terminal handler has
// returned, or at unsubscription - so it runs once, on the thread that ended it.
template <class T, class F> observable<T> finally(const observable<T>& source, F last) {
    return make_observable<T>([source, last](const subscriber<T>& o) {
        o.add(last);
        source.subscribe(o);
    });
}

} // namespace detail
} // namespace rxcpp
