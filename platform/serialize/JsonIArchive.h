#pragma once

#include "platform/serialize/JsonSerializer.h"

#include <boost/archive/detail/common_iarchive.hpp>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <type_traits>
#include <vector>

namespace Serialize::Json {

// Reads values from a JSON document: `archive >> value` or, in a field visitor,
// `archive & field`. The archive keeps the stack of values it has entered, whose top is the
// head being read (the document's root at first), the map from object id to the value seen
// under that id (see JsonReference.h), and its flags (JsonConfig.h). The document must outlive
// the archive. Boost contributes the archive bases only: no class id, version or tracking mark
// is read.
class iarchive : public boost::archive::detail::common_iarchive<iarchive> {
public:
    iarchive(const nlohmann::json& root, int flags);
    ~iarchive() override;

    const nlohmann::json& headRef() const;
    // Makes a value of the same document the head, registering it under its "$id" if it has
    // one; leave() gives the previous head back.
    void enter(const nlohmann::json& value);
    void leave();

    // The value registered under an id. Throws std::out_of_range "invalid map<K, T> key" for
    // an id that no entered value carries.
    const nlohmann::json& referencedValue(std::uint64_t id) const;

    int flags() const;

private:
    friend class boost::archive::detail::interface_iarchive<iarchive>;
    friend class boost::archive::detail::common_iarchive<iarchive>;

    template <class T> void load_override(T& value) {
        Serializer<std::remove_const_t<T>>::load(*this, value);
    }

    // Boost's bookkeeping never reaches a JSON document.
    void load_override(boost::archive::version_type&) {}
    void load_override(boost::archive::object_id_type&) {}
    void load_override(boost::archive::class_id_type&) {}
    void load_override(boost::archive::class_id_optional_type&) {}
    void load_override(boost::archive::tracking_type&) {}
    void load_override(boost::archive::class_name_type&) {}

    void vload(boost::archive::version_type& version) override;
    void vload(boost::archive::object_id_type& id) override;
    void vload(boost::archive::class_id_type& id) override;
    void vload(boost::archive::class_id_optional_type& id) override;
    void vload(boost::archive::tracking_type& tracking) override;
    void vload(boost::archive::class_name_type& name) override;

    std::vector<const nlohmann::json*> stack;
    std::map<std::uint64_t, const nlohmann::json*> references;
    int configFlags;
};

} // namespace Serialize::Json
