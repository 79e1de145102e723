#include "platform/serialize/JsonOArchive.h"

namespace Serialize::Json {

oarchive::oarchive(nlohmann::json& root, int flags)
    : boost::archive::detail::common_oarchive<oarchive>(0)
    , configFlags(flags) {
    enter(root);
}

oarchive::~oarchive() = default;

nlohmann::json& oarchive::headRef() {
    return *stack.back();
}

void oarchive::enter(nlohmann::json& value) {
    stack.push_back(&value);
}

void oarchive::leave() {
    stack.pop_back();
}

int oarchive::flags() const {
    return configFlags;
}

void oarchive::vsave(const boost::archive::version_type) {}
void oarchive::vsave(const boost::archive::object_id_type) {}
void oarchive::vsave(const boost::archive::object_reference_type) {}
void oarchive::vsave(const boost::archive::class_id_type) {}
void oarchive::vsave(const boost::archive::class_id_optional_type) {}
void oarchive::vsave(const boost::archive::class_id_reference_type) {}
void oarchive::vsave(const boost::archive::class_name_type&) {}
void oarchive::vsave(const boost::archive::tracking_type) {}

} // namespace Serialize::Json
