#pragma once

#include "platform/serialize/JsonDetail.h"
#include "platform/serialize/JsonIArchive.h"
#include "platform/serialize/JsonOArchive.h"

#include <string>

namespace SerializeTesting {

// A key of the head object, as a field wrapper of a user of the archives would be.
template <class T> struct Key {
    std::string name;
    T* value;
};

template <class T> const Key<T> key(std::string name, T& value) {
    return Key<T>{std::move(name), &value};
}

// A value type with a field visitor written once for both directions.
struct Point {
    int x = 0;
    int y = 0;
    int visits = 0;

    template <class Archive> void serialize(Archive& archive, const unsigned int version) {
        ++visits;
        lastVersion = version;
        // clang-format off
        archive & key("x", x);
        archive & key("y", y);
        // clang-format on
    }

    unsigned int lastVersion = 99;
};

} // namespace SerializeTesting

namespace Serialize::Json {

template <class T> struct Serializer<SerializeTesting::Key<T>> {
    static void load(iarchive& archive, const SerializeTesting::Key<T>& key) {
        detail::load(archive.headRef().at(key.name), *key.value);
    }

    static void save(oarchive& archive, const SerializeTesting::Key<T>& key) {
        detail::save(archive.headRef()[key.name], *key.value);
    }
};

} // namespace Serialize::Json
