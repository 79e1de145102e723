#include "platform/serialize/JsonIArchive.h"

#include "platform/serialize/JsonReference.h"

#include <stdexcept>

namespace Serialize::Json {

iarchive::iarchive(const nlohmann::json& root, int flags)
    : boost::archive::detail::common_iarchive<iarchive>(0)
    , configFlags(flags) {
    enter(root);
}

iarchive::~iarchive() = default;

const nlohmann::json& iarchive::headRef() const {
    return *stack.back();
}

void iarchive::enter(const nlohmann::json& value) {
    stack.push_back(&value);
    if (const auto id = getObjectId(value))
        references[*id] = &value;
}

void iarchive::leave() {
    stack.pop_back();
}

const nlohmann::json& iarchive::referencedValue(std::uint64_t id) const {
    const auto found = references.find(id);
    if (found == references.end())
        throw std::out_of_range("invalid map<K, T> key");
    return *found->second;
}

int iarchive::flags() const {
    return configFlags;
}

void iarchive::vload(boost::archive::version_type&) {}
void iarchive::vload(boost::archive::object_id_type&) {}
void iarchive::vload(boost::archive::class_id_type&) {}
void iarchive::vload(boost::archive::class_id_optional_type&) {}
void iarchive::vload(boost::archive::tracking_type&) {}
void iarchive::vload(boost::archive::class_name_type&) {}

} // namespace Serialize::Json
