#pragma once

#include <boost/serialization/serialization.hpp>

namespace Serialize::Json {

class iarchive;
class oarchive;

// How a value passed to a JSON archive by `archive & value` reaches the document. The primary
// template treats the value as one without a name: its field visitor runs against the archive
// and reads from or writes to the current head. Field wrappers specialise it to read or write a
// key of the head instead.
//
// The visitor is found as Boost finds it: a free serialize(Archive&, T&, unsigned) by
// argument-dependent lookup, or else the member T::serialize(Archive&, unsigned).
template <class T> struct Serializer {
    static void load(iarchive& archive, T& value) {
        using boost::serialization::serialize;
        serialize(archive, value, 0u);
    }

    static void save(oarchive& archive, const T& value) {
        using boost::serialization::serialize;
        // Visitors are written once for both directions and so take the value as non-const;
        // a saving archive only reads through it.
        serialize(archive, const_cast<T&>(value), 0u);
    }
};

} // namespace Serialize::Json
