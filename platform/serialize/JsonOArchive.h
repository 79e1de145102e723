#pragma once

#include "platform/serialize/JsonSerializer.h"

#include <boost/archive/detail/common_oarchive.hpp>
#include <nlohmann/json.hpp>
#include <vector>

namespace Serialize::Json {

// Writes values into a JSON document: `archive << value` or, in a field visitor,
// `archive & field`. The archive keeps the stack of values it has entered, whose top is the
// head being written (the document's root at first), and its flags (JsonConfig.h). The
// document must outlive the archive. Boost contributes the archive bases only: no class id,
// version, tracking mark or object id is written.
class oarchive : public boost::archive::detail::common_oarchive<oarchive> {
public:
    oarchive(nlohmann::json& root, int flags);
    ~oarchive() override;

    nlohmann::json& headRef();
    // Makes a value the head until leave() gives the previous head back.
    void enter(nlohmann::json& value);
    void leave();

    int flags() const;

private:
    friend class boost::archive::detail::interface_oarchive<oarchive>;
    friend class boost::archive::detail::common_oarchive<oarchive>;

    template <class T> void save_override(const T& value) { Serializer<T>::save(*this, value); }

    // Boost's bookkeeping never reaches a JSON document.
    void save_override(const boost::archive::version_type&) {}
    void save_override(const boost::archive::object_id_type&) {}
    void save_override(const boost::archive::object_reference_type&) {}
    void save_override(const boost::archive::class_id_type&) {}
    void save_override(const boost::archive::class_id_optional_type&) {}
    void save_override(const boost::archive::class_id_reference_type&) {}
    void save_override(const boost::archive::class_name_type&) {}
    void save_override(const boost::archive::tracking_type&) {}

    void vsave(const boost::archive::version_type version) override;
    void vsave(const boost::archive::object_id_type id) override;
    void vsave(const boost::archive::object_reference_type reference) override;
    void vsave(const boost::archive::class_id_type id) override;
    void vsave(const boost::archive::class_id_optional_type id) override;
    void vsave(const boost::archive::class_id_reference_type reference) override;
    void vsave(const boost::archive::class_name_type& name) override;
    void vsave(const boost::archive::tracking_type tracking) override;

    std::vector<nlohmann::json*> stack;
    int configFlags;
};

} // namespace Serialize::Json
